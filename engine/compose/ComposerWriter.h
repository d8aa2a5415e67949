#pragma once

#include "base/Matrix.h"
#include "engine/PageComposer.h"
#include "engine/compose/OutputPart.h"
#include "engine/compose/PlainPages.h"
#include "engine/file/ParsedFile.h"
#include "engine/objects/Qpdf.h"
#include "engine/output/FileWriter.h"
#include "engine/output/WrittenObjects.h"
#include "picture/PictureEncoding.h"

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace vellmora {

/// The output file of a context while it is put together.
class PageComposer::Writer {
public:
    explicit Writer(PDFDataConsumer& consumer);

    void beginPage();
    void drawPage(const ParsedDocument& document, qsizetype index, DisplayBox box);
    int addPicture(PictureMaker picture);
    void drawPicture(int picture, const Rect& rect);
    void endPage();
    void write();
    QList<qsizetype> incompletePages() const { return {m_incompletePages.begin(), m_incompletePages.end()}; }

private:
    struct OpenPage {
        std::optional<PageInWords> words;  ///< where the library does not draw it
        std::map<std::string, QPDFObjectHandle> entries;
        /// The page's XObject resources, without the pictures.
        std::map<std::string, QPDFObjectHandle> objects;
        /// The page's property lists, by the names of the objects that are on them.
        std::map<std::string, QPDFObjectHandle> layers;
        std::set<int> pictures;
        Rect mediaBox{0, 0, 595, 842};
        Matrix fromPageSpace;
        std::string content;
        int annotationCount = 0;
        bool isIncomplete = false;
    };

    struct PictureInWork {
        PictureMaker make;
        std::optional<QPDFObjectHandle> object{};  ///< that stands for it in the part, which uses it
        int number = 0;                            ///< that it will have; 0 where nothing has used it yet
    };

    bool drawInWords(const ParsedDocument& document, qsizetype index, DisplayBox box);
    void drawByLibrary(const std::shared_ptr<const ParsedFile>& file, qsizetype index, DisplayBox box);
    void numberStandIns();
    void drawFrom(const std::shared_ptr<const ParsedFile>& file, const std::function<void()>& draw);
    void usePlainFile(const ParsedDocument& document, qsizetype index, const PlainFile& file);
    void useSource(const std::shared_ptr<const ParsedFile>& file);
    void drawParts(const ParsedFile& source, const ParsedPage& page, DisplayBox box);
    void attempt(const std::function<void()>& step);
    void drawContent(const ParsedFile& source, const ParsedPage& page);
    void drawAnnotations(const ParsedFile& source, const ParsedPage& page);
    void paintAnnotation(const AnnotationAppearance& appearance, QPDFObjectHandle layer);
    void carryPageAttributes(const ParsedPage& page, DisplayBox box);
    void carryInnerBoxes(const ParsedPage& page);
    void carryDocumentAttributes(const ParsedFile& source);
    void paint(const std::string& name, const QPDFObjectHandle& object, const Matrix& matrix);
    int pageInWords();
    std::string resourcesInWords();
    QPDFObjectHandle pageObject();
    OutputPart& part();
    void fillPart();
    void writePart();
    void writePictures();
    void endPart();
    int contentStream(const std::string& content);

    PDFDataConsumer& m_consumer;
    FileWriter m_file;
    WrittenObjects m_written;
    std::unique_ptr<OutputPart> m_part;
    std::vector<PictureInWork> m_pictures;
    PlainPages m_plainPages;
    std::set<const PlainFile*> m_plainFiles;  ///< that pages were drawn from
    std::map<std::string, int> m_contents;    ///< numbers of content streams, by what they draw
    qsizetype m_pageCount = 0;
    int m_catalogNumber = 0;
    bool m_hasCatalog = false;  ///< it is written
    int m_pagesNumber = 0;
    std::string m_kidsText;
    OpenPage m_page;
    std::set<qsizetype> m_incompletePages;
};

}  // namespace vellmora
