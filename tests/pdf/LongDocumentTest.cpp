#include "base/Error.h"
#include "pdf/DocumentProcesses.h"
#include "pdf/PagePdf.h"
#include "tests/support/DrawnPdf.h"
#include "tests/support/GTestQt.h"
#include "tests/support/RewrittenPdf.h"
#include "tests/support/TestDocuments.h"
#include "tests/support/TestImages.h"

#include <functional>
#include <set>

using namespace vellmora;
using namespace vellmora::test;

namespace {

/// A document as most programs write it: one table of one section.
class PlainPdf {
public:
    int add(const std::string& body) {
        m_bodies.push_back(body);
        return static_cast<int>(m_bodies.size());
    }
    int addStream(const std::string& entries, const std::string& data) {
        return add("<< " + entries + " /Length " + std::to_string(data.size()) + " >>\nstream\n" + data +
                   "\nendstream");
    }
    /// The next object's number.
    int next() const { return static_cast<int>(m_bodies.size()) + 1; }
    /// Sound, with the last object for its catalog.
    QByteArray bytes() const {
        std::string file = "%PDF-1.7\n";
        std::string table = "0000000000 65535 f \n";
        for (size_t i = 0; i < m_bodies.size(); ++i) {
            const std::string position = std::to_string(file.size());
            table += std::string(10 - position.size(), '0') + position + " 00000 n \n";
            file += std::to_string(i + 1) + " 0 obj\n" + m_bodies[i] + "\nendobj\n";
        }
        const std::string size = std::to_string(m_bodies.size() + 1);
        return QByteArray::fromStdString(file + "xref\n0 " + size + "\n" + table + "trailer\n<< /Size " +
                                         size + " /Root " + std::to_string(m_bodies.size()) +
                                         " 0 R >>\nstartxref\n" + std::to_string(file.size()) + "\n%%EOF\n");
    }

private:
    std::vector<std::string> m_bodies;
};

std::string reference(int number) {
    return std::to_string(number) + " 0 R";
}

/// Adds the root of the page tree and the catalog: objects `root` and the one behind it.
void close(PlainPdf& file, const std::vector<int>& pages, const std::string& forCatalog = {}) {
    std::string kids;
    for (const int page : pages)
        kids += reference(page) + ' ';
    const int root =
        file.add("<< /Type /Pages /Count " + std::to_string(pages.size()) + " /Kids [" + kids + "] >>");
    file.add("<< /Type /Catalog /Pages " + reference(root) + ' ' + forCatalog + " >>");
}

std::string contentOf(int page) {
    return "0 0 " + std::to_string(page + 1) + " 9 re f";
}

/// Runs before a page is ended.
using Drawing = std::function<void(PDFContext&, qsizetype)>;

QByteArray saved(const PDFDocument& document, const Drawing& draw = {}) {
    MemoryConsumer consumer;
    const auto context = PDFContext::create(consumer, document);
    for (qsizetype page = 0; page < document.pageCount(); ++page) {
        context->beginPage();
        context->drawPage(page, DisplayBox::mediaBox);
        if (draw)
            draw(*context, page);
        context->endPage();
    }
    context->close();
    EXPECT_TRUE(context->incompletePages().isEmpty());
    return consumer.bytes();
}

QPDFObjectHandle formOf(QPDFObjectHandle page, const char* name = "/P") {
    return page.getKey("/Resources").getKey("/XObject").getKey(name);
}

/// Other pages have its appearance among their resources, for nothing.
bool hasSeal(int page) {
    return page >= 2000 && page % 3 > 0;
}

/// The PDF library reads such pages, and those with an odd state.
bool hasFilterElsewhere(int page) {
    return page / 500 == 2;
}

bool hasOddState(int page) {
    return page / 500 == 3;
}

bool hasLetterhead(int page) {
    return page >= 1500;
}

/// More objects than are written at once: pages that share whatever can be shared.
PlainPdf longDocument(int pageCount) {
    PlainPdf file;
    const int filter = file.add("/ASCIIHexDecode");
    const int font = file.add("<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica >>");
    const int letterhead =
        file.addStream("/Type /XObject /Subtype /Form /BBox [0 0 9 9] /Resources << >>", "0 0 1 1 re f");
    // As an XObject it is none yet; as an appearance it becomes one.
    const int seal = file.addStream("/BBox [0 0 9 9]", "0 0 2 2 re f");
    const int layer = file.add("<< /Type /OCG /Name (Ebene) >>");
    const int annotation = file.add("<< /Type /Annot /Subtype /Stamp /Rect [0 0 9 9] /OC " +
                                    reference(layer) + " /AP << /N " + reference(seal) + " >> >>");
    std::vector<int> pages;
    for (int i = 0; i < pageCount; ++i) {
        const std::string content = contentOf(i);
        const int stream =
            file.addStream("/Filter " + (hasFilterElsewhere(i) ? reference(filter) : "/ASCIIHexDecode"),
                           QByteArray::fromStdString(content).toHex().toStdString() + '>');
        const int state = file.add(hasOddState(i) ? "<< /Type /ExtGState /CA 1.0 /Odd (\\101) >>"
                                                  : "<< /Type /ExtGState /CA 1 >>");
        pages.push_back(file.add("<< /Type /Page /MediaBox [0 0 99 99] /Contents " + reference(stream) +
                                 (hasSeal(i) ? " /Annots [" + reference(annotation) + "]" : "") +
                                 " /Resources << /Font << /F " + reference(font) + " >> /ExtGState << /G " +
                                 reference(state) + " >> /XObject << " +
                                 (hasLetterhead(i) ? "/L " + reference(letterhead) : "") + " /S " +
                                 reference(seal) + " >> >> >>"));
    }
    close(file, pages, "/OCProperties << /OCGs [" + reference(layer) + "] /D << >> >>");
    return file;
}

}  // namespace

TEST(LongDocumentTest, PagesInheritWhatTheyDoInOtherFiles) {
    PlainPdf file;
    const int outerFont = file.add("<< /Type /Font /Subtype /Type1 /BaseFont /Courier >>");
    const int innerFont = file.add("<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica >>");
    const int inner = file.add("<< /Font << /F " + reference(innerFont) + " >> >>");
    const int content = file.addStream({}, "/F 9 Tf");
    const std::string page = "<< /Type /Page /Contents " + reference(content) + ' ';
    const std::vector<int> leaves{file.add(page + ">>"),
                                  file.add(page + "/MediaBox null /Rotate -90 /CropBox [10 10 60 500] >>"),
                                  file.add(page + "/Resources 999 0 R /MediaBox [ 0 0 30.5 40 ] >>"),
                                  file.add(page + "/Resources << /Font << >> >> /CropBox [5 5 2 2] >>")};
    std::string kids;
    for (const int leaf : leaves)
        kids += reference(leaf) + ' ';
    const int low = file.add("<< /Type /Pages /Count 4 /Rotate 180 /Resources " + reference(inner) +
                             " /Kids [" + kids + "] >>");
    const int lone = file.add(page + ">>");
    const int root =
        file.add("<< /Type /Pages /Count 5 /MediaBox [0 0 100 200] /Resources << /Font << /F " +
                 reference(outerFont) + " >> >> /Kids [" + reference(low) + ' ' + reference(lone) + "] >>");
    file.add("<< /Type /Catalog /Pages " + reference(root) + " >>");

    const auto plain = documentOf(file.bytes());
    const auto other = documentOf(rewritten(file.bytes()));
    ASSERT_EQ(plain->pageCount(), 5);
    ASSERT_EQ(other->pageCount(), 5);
    for (qsizetype i = 0; i < 5; ++i) {
        for (const DisplayBox box : {DisplayBox::mediaBox, DisplayBox::cropBox})
            EXPECT_EQ(plain->page(i)->bounds(box), other->page(i)->bounds(box)) << i;
        Output ofPlain(makePagePdf(*plain, i));
        Output ofOther(makePagePdf(*other, i));
        const auto formWithAll = [](Output& output) {
            QPDFObjectHandle form = output.drawn("/P").getDict();
            form.makeDirect();
            return form.unparse();
        };
        EXPECT_EQ(formWithAll(ofPlain), formWithAll(ofOther)) << i;
    }
}

TEST(LongDocumentTest, IsSavedInPartsThatShareWhatPagesShare) {
    constexpr int pageCount = 3000;
    const auto document = documentOf(longDocument(pageCount).bytes());
    ASSERT_EQ(document->pageCount(), pageCount);
    std::optional<PDFContext::Picture> picture;
    const QByteArray bytes = saved(*document, [&](PDFContext& context, qsizetype) {
        if (!picture)
            picture = context.addPicture(Image(plainImage(8, 8, QColor(255, 0, 0))));
        context.drawPicture(*picture, {0, 0, 9, 9});
    });
    QPDF output;
    output.processMemoryFile("saved", bytes.constData(), static_cast<size_t>(bytes.size()));
    std::vector<QPDFObjectHandle> pages = output.getAllPages();
    ASSERT_EQ(pages.size(), static_cast<size_t>(pageCount));
    std::set<QPDFObjGen> shared;
    for (int i = 0; i < pageCount; i += 7) {
        QPDFObjectHandle page = pages[static_cast<size_t>(i)];
        EXPECT_EQ(page.getKey("/Parent").getObjGen(), output.getRoot().getKey("/Pages").getObjGen()) << i;
        ASSERT_EQ(text(formOf(page).getStreamData()).substr(0, contentOf(i).size()), contentOf(i));
        QPDFObjectHandle resources = formOf(page).getDict().getKey("/Resources");
        ASSERT_TRUE(resources.getKey("/Font").getKey("/F").getKey("/BaseFont").isNameAndEquals("/Helvetica"))
            << i;
        if (hasLetterhead(i)) {
            shared.insert(resources.getKey("/XObject").getKey("/L").getObjGen());
            ASSERT_EQ(text(resources.getKey("/XObject").getKey("/L").getStreamData()), "0 0 1 1 re f") << i;
        }
        ASSERT_FALSE(text(formOf(page, "/S0").getStreamData()).empty()) << i;
        for (const QPDFObjectHandle& object :
             {resources.getKey("/Font").getKey("/F"), formOf(page, "/S0"),
              output.getRoot().getKey("/OCProperties").getKey("/OCGs").getArrayItem(0)})
            shared.insert(object.getObjGen());
        if (!hasSeal(i))
            continue;
        QPDFObjectHandle seal = formOf(page, "/A0");
        ASSERT_TRUE(seal.isStream() && seal.getDict().getKey("/Subtype").isNameAndEquals("/Form")) << i;
        ASSERT_EQ(text(seal.getStreamData()), "0 0 2 2 re f") << i;
        shared.insert(page.getKey("/Resources").getKey("/Properties").getKey("/A0").getObjGen());
    }
    EXPECT_EQ(shared.size(), 4U) << "font, letterhead, picture and layer are there once";
    EXPECT_TRUE(output.getWarnings().empty());
}

/// The PDF library keeps two kilobytes of each object that it reads and of each that it writes.
TEST(LongDocumentTest, NeedsNoMoreMemoryThanAShortOne) {
    DocumentLimits limits;
    limits.memory = size_t{192} << 20;
    DocumentProcesses processes(QStringLiteral(VELLMORA_DOCUMENT), limits);
    for (const int pageCount : {200, 40000}) {
        const auto document = PDFDocument::fromData(longDocument(pageCount).bytes(), processes);
        ASSERT_EQ(document->pageCount(), pageCount);
        EXPECT_FALSE(makePagePdf(*document, pageCount - 1).isEmpty());
        const QByteArray bytes = saved(*document);
        EXPECT_EQ(documentOf(bytes)->pageCount(), pageCount);
    }
}

TEST(LongDocumentTest, DrawsAPageThatNeedsVeryManyObjects) {
    PlainPdf file;
    const int content = file.addStream({}, contentOf(0));
    std::string annotations;
    for (int i = 0; i < 20100; ++i)
        annotations += reference(file.add("<< /Subtype /Link /Rect [0 0 9 9] >>")) + ' ';
    const std::string page = "<< /Type /Page /MediaBox [0 0 9 9] /Contents " + reference(content);
    std::vector<int> pages{file.add(page + " >>"), file.add(page + " /Annots [" + annotations + "] >>")};
    close(file, pages);
    const auto document = documentOf(file.bytes());
    for (qsizetype i = 0; i < 2; ++i)
        EXPECT_EQ(Output(makePagePdf(*document, i)).contentOf("/P"), contentOf(0)) << i;
}

/// The tree's own count is not believed: each page is looked at before the document is open.
TEST(LongDocumentTest, NoticesAPageThatIsLostAmongThousands) {
    constexpr int lost = 1234;
    QByteArray bytes = longDocument(2000).bytes();
    qsizetype at = 0;
    for (int page = 0; page <= lost; ++page)
        at = bytes.indexOf("/Type /Page /MediaBox", at + 1);
    bytes.replace(bytes.lastIndexOf(" obj", at), 4, " abc");
    const auto document = documentOf(bytes);
    EXPECT_EQ(document->pageCount(), 2000);
    EXPECT_EQ(document->damage().lostPages, QList<qsizetype>{lost});
}
