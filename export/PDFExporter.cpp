#include "export/PDFExporter.h"

#include "export/PDFExportError.h"
#include "pdf/DamageText.h"
#include "pdf/PDFContext.h"

#include <memory>
#include <utility>

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
        auto known = m_byContent.find(stamp.imageData);
        if (known == m_byContent.end())
            known = m_byContent.insert(stamp.imageData, addPicture(stamp));
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
    PicturePool pictures(context);
    for (qsizetype index = 0; index < document.pageCount(); ++index) {
        if (!document.page(index))
            continue;
        context.beginPage();
        context.drawPage(index, DisplayBox::mediaBox);
        for (const StampItem& stamp : stampsByPage.value(index)) {
            if (const auto picture = pictures.pictureOf(stamp))
                context.drawPicture(*picture, stamp.rect);
        }
        context.endPage();
    }
}

/// Notes what it hands on to the file.
class WatchedConsumer : public PDFDataConsumer {
public:
    WatchedConsumer(PDFDataConsumer& file, const PDFDocument& document, FileVersions& versions)
        : m_file(file), m_source(document.content()), m_versions(versions) {}

    void write(const char* bytes, qint64 count) override {
        m_content.add({bytes, static_cast<size_t>(count)});
        m_file.write(bytes, count);
    }
    bool restart() override {
        m_content = WrittenContent(m_source);
        return m_file.restart();
    }
    void finish() override {
        m_versions.expect(std::move(m_content));
        m_file.finish();
    }

private:
    PDFDataConsumer& m_file;
    std::shared_ptr<const FileSnapshot> m_source;
    WrittenContent m_content{m_source};
    FileVersions& m_versions;
};

/// Answers what the file lacks.
QString writeTo(PDFDataConsumer& file, const PDFDocument& document, const StampsByPage& stampsByPage,
                FileVersions& versions, WorkProgress* progress) {
    WatchedConsumer consumer(file, document, versions);
    const auto context = PDFContext::create(consumer, document, progress);
    drawPages(*context, document, stampsByPage);
    context->close();
    return missingText(document.damage(), context->incompletePages());
}

/// Runs the writing of a document. Whatever it throws becomes one of the exporter's own errors, with its
/// reason.
template <typename Writing>
QString exported(Writing writing) {
    using Case = PDFExportError::Case;
    try {
        return writing();
    } catch (const PDFExportError&) {
        throw;
    } catch (const Error& error) {
        throw PDFExportError(Case::couldNotCreateConsumer, error.reason());
    } catch (...) {  // a picture of half a gigabyte is more than some machines can give
        throw PDFExportError(Case::couldNotCreateContext, Error::current().reason());
    }
}

/// Throws `Error` where replacing what is there would take something away.
void requireNothingLost(FileVersions::Held original, const PDFDocument& document, const QString& missing) {
    using Held = FileVersions::Held;
    const auto refuse = [](const QString& reason) {
        throw Error(Error::vellmoraDomain, 2, reason + QStringLiteral(" Bitte „Speichern unter…“ wählen."));
    };
    if (original == Held::foreign)
        refuse(QStringLiteral("Die Datei wurde inzwischen anderswo geändert."));
    if (original != Held::opened)
        return;
    if (document.pageCount() == 0)
        refuse(QStringLiteral("Die neue Datei hätte keine Seiten."));
    if (!missing.isEmpty())
        refuse(QStringLiteral("Die neue Datei wäre unvollständig: %1.").arg(missing));
}

}  // namespace

QString PDFExporter::save(const PDFDocument& document, const StampsByPage& stampsByPage, const QUrl& to,
                          FileVersions& versions, WorkProgress* progress) {
    QString missing = exported([&] {
        FileConsumer file(to.toLocalFile());
        return writeTo(file, document, stampsByPage, versions, progress);
    });
    versions.confirm();
    return missing;
}

QString PDFExporter::save(const PDFDocument& document, const StampsByPage& stampsByPage, const QUrl& to) {
    FileVersions versions;
    return save(document, stampsByPage, to, versions);
}

QString PDFExporter::replaceOriginal(const PDFDocument& document, const StampsByPage& stampsByPage,
                                     const QUrl& originalURL, FileVersions& versions,
                                     WorkProgress* progress) {
    const QString original = originalURL.toLocalFile();
    ReplacementConsumer replacement(original);
    QString missing =
        exported([&] { return writeTo(replacement, document, stampsByPage, versions, progress); });
    requireNothingLost(versions.heldBy(original), document, missing);
    replacement.replaceOriginal();
    versions.confirm();
    return missing;
}

QString PDFExporter::replaceOriginal(const PDFDocument& document, const StampsByPage& stampsByPage,
                                     const QUrl& originalURL) {
    FileVersions versions(document.content());
    return replaceOriginal(document, stampsByPage, originalURL, versions);
}

}  // namespace vellmora
