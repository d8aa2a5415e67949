#include "export/PDFExporter.h"

#include "export/PDFExportError.h"
#include "platform/pdf/PDFContext.h"

#include <new>

#include <QCryptographicHash>
#include <QHash>

namespace vellmora {

namespace {

/// Gives each distinct picture to the context once, whether stamps share its bytes or hold equal ones.
class PicturePool {
public:
    explicit PicturePool(PDFContext& context) : m_context(context) {}

    /// Nothing where the stamp's picture cannot be decoded.
    std::optional<PDFContext::Picture> pictureOf(const StampItem& stamp) {
        const char* bytes = stamp.imageData.constData();
        if (const auto known = m_byAddress.constFind(bytes); known != m_byAddress.constEnd())
            return *known;
        const QByteArray hash = QCryptographicHash::hash(stamp.imageData, QCryptographicHash::Sha256);
        auto known = m_byContent.find(hash);
        if (known == m_byContent.end())
            known = m_byContent.insert(hash, addPicture(stamp));
        m_byAddress.insert(bytes, *known);
        return *known;
    }

private:
    std::optional<PDFContext::Picture> addPicture(const StampItem& stamp) {
        const std::optional<Image> image = stamp.image();
        return image ? std::optional(m_context.addPicture(*image)) : std::nullopt;
    }

    PDFContext& m_context;
    QHash<const char*, std::optional<PDFContext::Picture>> m_byAddress;
    QHash<QByteArray, std::optional<PDFContext::Picture>> m_byContent;
};

void drawPages(PDFContext& context, const PDFDocument& document, const StampsByPage& stampsByPage) {
    document.readAhead();
    PicturePool pictures(context);
    for (qsizetype index = 0; index < document.pageCount(); ++index) {
        const std::optional<PDFPage> page = document.page(index);
        if (!page)
            continue;
        context.beginPage(page->bounds(DisplayBox::mediaBox));
        context.drawPage(document, index, DisplayBox::mediaBox);
        for (const StampItem& stamp : stampsByPage.value(index)) {
            if (const auto picture = pictures.pictureOf(stamp))
                context.drawPicture(*picture, stamp.rect);
        }
        context.endPage();
    }
}

void writeTo(PDFDataConsumer& consumer, const PDFDocument& document, const StampsByPage& stampsByPage) {
    const auto context = PDFContext::create(consumer);
    if (!context)
        throw PDFExportError(PDFExportError::Case::couldNotCreateContext);
    try {
        drawPages(*context, document, stampsByPage);
        context->close();
    } catch (const Error&) {
        throw PDFExportError(PDFExportError::Case::couldNotCreateConsumer);
    } catch (const std::bad_alloc&) {  // a picture of half a gigabyte is more than some machines can give
        throw PDFExportError(PDFExportError::Case::couldNotCreateContext);
    }
}

}  // namespace

void PDFExporter::save(const PDFDocument& document, const StampsByPage& stampsByPage, const QUrl& to) {
    const auto consumer = FileConsumer::create(to.toLocalFile());
    if (!consumer)
        throw PDFExportError(PDFExportError::Case::couldNotCreateConsumer);
    writeTo(*consumer, document, stampsByPage);
}

void PDFExporter::replaceOriginal(const PDFDocument& document, const StampsByPage& stampsByPage,
                                  const QUrl& originalURL) {
    ReplacementConsumer replacement(originalURL.toLocalFile());
    writeTo(replacement, document, stampsByPage);
    replacement.replaceOriginal();
}

}  // namespace vellmora
