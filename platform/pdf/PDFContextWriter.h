#pragma once

#include "platform/pdf/ObjectCopier.h"
#include "platform/pdf/PDFContext.h"
#include "platform/pdf/PDFSource.h"
#include "platform/pdf/Qpdf.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace vellmora {

/// The output file of a context while it is put together.
class PDFContext::Writer {
public:
    explicit Writer(PDFDataConsumer& consumer);

    void beginPage(const Rect& mediaBox);
    void drawPage(const PDFSource& source, qsizetype index, DisplayBox box);
    Picture addPicture(const QImage& pixels);
    void drawPicture(Picture picture, const Rect& rect);
    void endPage();
    void write();

private:
    struct OpenPage {
        QPDFObjectHandle dictionary;
        QPDFObjectHandle objects;  ///< the page's XObject resources
        QTransform fromPageSpace;
        std::string content;
    };

    void drawContent(const SourcePage& page);
    void drawAnnotations(const SourcePage& page);
    void carryPageAttributes(const SourcePage& page, DisplayBox box);
    void carryOptionalContent(const PDFSource& source);
    void paint(const std::string& name, const QPDFObjectHandle& object, const QTransform& matrix);
    QPDFObjectHandle contentStream(const std::string& content);
    void setMediaBox(const Rect& box);
    void leavePicturesAlone();

    PDFDataConsumer& m_consumer;
    QPDF m_output;
    ObjectCopier m_copier;
    QPDFObjectHandle m_pages;
    QPDFObjectHandle m_kids = QPDFObjectHandle::newArray();
    std::vector<QPDFObjectHandle> m_pictures;
    /// Pages that are drawn alike (no stamp, or the same one at the same place) share their content stream.
    std::map<std::string, QPDFObjectHandle> m_contentStreams;
    OpenPage m_page;
};

}  // namespace vellmora
