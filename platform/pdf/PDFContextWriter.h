#pragma once

#include "platform/pdf/PDFContext.h"
#include "platform/pdf/Qpdf.h"
#include "platform/pdf/annotations/Annotations.h"
#include "platform/pdf/drawing/BoxArrays.h"
#include "platform/pdf/picture/EncodedPicture.h"
#include "platform/pdf/reading/PDFSource.h"
#include "platform/pdf/writing/ObjectCopier.h"

#include <functional>
#include <future>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <vector>

namespace vellmora {

/// The output file of a context while it is put together.
class PDFContext::Writer {
public:
    explicit Writer(PDFDataConsumer& consumer);

    void beginPage(const Rect& mediaBox);
    void drawPage(const PDFSource& source, qsizetype index, DisplayBox box);
    Picture addPicture(const Image& image);
    void drawPicture(Picture picture, const Rect& rect);
    void endPage();
    void write();
    QList<qsizetype> incompletePages() const { return {m_incompletePages.begin(), m_incompletePages.end()}; }

private:
    struct OpenPage {
        QPDFObjectHandle dictionary;
        QPDFObjectHandle objects;  ///< the page's XObject resources
        QPDFObjectHandle layers;  ///< the page's property lists, by the names of the objects that are on them
        Rect mediaBox;
        QTransform fromPageSpace;
        std::string content;
        int annotationCount = 0;
        bool isIncomplete = false;
    };

    /// Compressed on a thread of its own while the pages are drawn.
    struct PictureInWork {
        QPDFObjectHandle object;
        std::future<EncodedPicture> encoded;
    };

    void useSource(const PDFSource& source);
    void drawParts(const PDFSource& source, const SourcePage& page, DisplayBox box);
    void attempt(const std::function<void()>& step);
    void drawContent(const SourcePage& page);
    void drawAnnotations(const PDFSource& source, const SourcePage& page);
    void paintAnnotation(const AnnotationAppearance& appearance, QPDFObjectHandle layer);
    void carryPageAttributes(const SourcePage& page, DisplayBox box);
    void carryDocumentAttributes(const PDFSource& source);
    void paint(const std::string& name, const QPDFObjectHandle& object, const QTransform& matrix);
    QPDFObjectHandle contentStream(const std::string& content);

    std::map<const PDFSource*, std::unique_lock<std::recursive_mutex>> m_sources;
    PDFDataConsumer& m_consumer;
    QPDF m_output;
    ObjectCopier m_copier;
    BoxArrays m_boxes;
    Appearances m_appearances;
    QPDFObjectHandle m_pages;
    QPDFObjectHandle m_kids = QPDFObjectHandle::newArray();
    std::vector<PictureInWork> m_pictures;
    /// Pages that are drawn alike (no stamp, or the same one at the same place) share their content stream.
    std::map<std::string, QPDFObjectHandle> m_contentStreams;
    OpenPage m_page;
    std::set<qsizetype> m_incompletePages;
};

}  // namespace vellmora
