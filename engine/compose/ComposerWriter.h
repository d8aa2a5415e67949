#pragma once

#include "engine/PageComposer.h"
#include "engine/appearance/Annotations.h"
#include "engine/compose/PageForm.h"
#include "engine/file/ParsedFile.h"
#include "engine/objects/Qpdf.h"
#include "engine/output/ObjectCopier.h"
#include "picture/PictureEncoding.h"

#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace vellmora {

/// The output file of a context while it is put together.
class PageComposer::Writer {
public:
    explicit Writer(PDFDataConsumer& consumer);

    void beginPage();
    void drawPage(const std::shared_ptr<const ParsedFile>& file, qsizetype index, DisplayBox box);
    int addPicture(PictureMaker picture);
    void drawPicture(int picture, const Rect& rect);
    void endPage();
    void write();
    QList<qsizetype> incompletePages() const { return {m_incompletePages.begin(), m_incompletePages.end()}; }

private:
    struct OpenPage {
        QPDFObjectHandle dictionary = QPDFObjectHandle::newDictionary();
        /// The page's XObject resources.
        QPDFObjectHandle objects = QPDFObjectHandle::newDictionary();
        /// The page's property lists, by the names of the objects that are on them.
        QPDFObjectHandle layers = QPDFObjectHandle::newDictionary();
        Rect mediaBox{0, 0, 595, 842};
        QTransform fromPageSpace;
        std::string content;
        int annotationCount = 0;
        bool isIncomplete = false;
    };

    struct PictureInWork {
        QPDFObjectHandle object;
        PictureMaker make;
    };

    void useSource(const std::shared_ptr<const ParsedFile>& file);
    void drawParts(const ParsedFile& source, const ParsedPage& page, DisplayBox box);
    void attempt(const std::function<void()>& step);
    void drawContent(const ParsedPage& page);
    void drawAnnotations(const ParsedFile& source, const ParsedPage& page);
    void paintAnnotation(const AnnotationAppearance& appearance, QPDFObjectHandle layer);
    void carryPageAttributes(const ParsedPage& page, DisplayBox box);
    void carryInnerBoxes(const ParsedPage& page);
    void carryDocumentAttributes(const ParsedFile& source);
    void paint(const std::string& name, const QPDFObjectHandle& object, const QTransform& matrix);
    QPDFObjectHandle contentStream(const std::string& content);

    /// What is copied from them is read when the output is written.
    std::set<std::shared_ptr<const ParsedFile>> m_sources;
    PDFDataConsumer& m_consumer;
    QPDF m_output;
    ObjectCopier m_copier;
    BoxArrays m_boxes;
    PageResources m_resources;
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
