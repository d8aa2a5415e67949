#include "engine/file/TokenMending.h"
#include "pdf/PagePdf.h"
#include "tests/support/DrawnPdf.h"
#include "tests/support/GTestQt.h"
#include "tests/support/RewrittenPdf.h"
#include "tests/support/TestDocuments.h"

using namespace vellmora;
using namespace vellmora::test;

namespace {

const std::string mark = "0.5 0.5 0.5 rg 0 0 50 50 re f";

std::string repeated(const std::string& text, int count) {
    std::string result;
    for (int i = 0; i < count; ++i)
        result += text;
    return result;
}

/// Values for which libqpdf gives up the object around them, though other readers show it.
std::vector<std::string> values() {
    return {
        "99999999999999999999",
        "[ 1 -99999999999999999999 ]",
        std::string(200000, '7'),
        "5000000000 0 R",
        "[ { } foo <zz> --5 1.2.3 { } bar ]",
        repeated("[", 520) + repeated("]", 520),
        repeated("<</A", 600) + "1" + repeated(">>", 600),
    };
}

/// The first of two pages. Its dictionary, content stream and font each have an entry more, empty for none.
struct Entries {
    std::string page;
    std::string content;
    std::string font;
};

QByteArray document(const Entries& entries) {
    return PdfBuilder()
        .page(entries.page + " /Contents 1000 0 R /Resources << /Font << /F 1001 0 R >> >>")
        .page({}, mark)
        .stream(entries.content, mark)
        .object("<< /Type /Font /Subtype /Type1 /BaseFont /Times-Roman " + entries.font + " >>")
        .bytes();
}

/// Whether both pages are there, and the first is drawn with its content and font.
testing::AssertionResult isWhole(const QByteArray& bytes) {
    const auto document = documentOf(bytes);
    if (!document || document->pageCount() != 2)
        return testing::AssertionFailure() << "pages: " << (document ? document->pageCount() : -1);
    Output output(makePagePdf(*document, 0));
    if (!output.drawn("/P").isStream() || output.contentOf("/P").find(mark) == std::string::npos)
        return testing::AssertionFailure() << "the content is lost";
    QPDFObjectHandle font = output.drawn("/P").getDict().getKey("/Resources").getKey("/Font").getKey("/F");
    if (!font.isDictionary() || !font.getKey("/BaseFont").isNameAndEquals("/Times-Roman"))
        return testing::AssertionFailure() << "the font is lost";
    return testing::AssertionSuccess();
}

/// A sound document whose objects are all in an object stream, with a value in the place of "/Mark 1".
QByteArray withMember(const Entries& entries, const std::string& value) {
    return rewritten(document(entries), [](QPDFWriter& writer) { writer.setCompressStreams(false); })
        .replace("/Mark 1" + QByteArray(static_cast<qsizetype>(value.size()) - 1, ' '),
                 "/Mark " + QByteArray::fromStdString(value));
}

}  // namespace

TEST(GivenUpObjectsTest, BringsBackPagesContentAndFonts) {
    for (const std::string& value : values()) {
        const std::string entry = "/Odd " + value;
        EXPECT_TRUE(isWhole(document({entry, "", ""}))) << value.substr(0, 40);
        EXPECT_TRUE(isWhole(document({"", entry, ""}))) << value.substr(0, 40);
        EXPECT_TRUE(isWhole(document({"", "", entry}))) << value.substr(0, 40);
        QByteArray withoutTable = document({entry, entry, entry});
        EXPECT_TRUE(isWhole(withoutTable.left(withoutTable.lastIndexOf("xref\n0 1")))) << value.substr(0, 40);
    }
}

TEST(GivenUpObjectsTest, BringsBackContentWhoseLengthCannotBeTaken) {
    for (const char* length : {"99999999999999999999", "9223372036854775807", "1000 0 R", "5000000000 0 R"}) {
        QByteArray bytes = document({});
        EXPECT_TRUE(isWhole(bytes.replace(bytes.indexOf("/Length", bytes.indexOf("1000 0 obj")), 10,
                                          QByteArray("/Length ") + length)))
            << length;
    }
}

TEST(GivenUpObjectsTest, BringsBackTheCatalogAndTheTrailer) {
    QByteArray bytes = document({});
    EXPECT_TRUE(isWhole(QByteArray(bytes).replace("/Catalog", "/Catalog /Odd 99999999999999999999")));
    EXPECT_TRUE(isWhole(QByteArray(bytes).replace("/Root 1 0 R", "/Root 1 0 R /Odd 99999999999999999999")));
    EXPECT_TRUE(isWhole(QByteArray(bytes).replace("/Size 1002", "/Size 99999999999999999999")));
}

TEST(GivenUpObjectsTest, BringsBackMembersOfObjectStreams) {
    const std::string value = "99999999999999999999";
    const std::string entry = "/Mark 1" + std::string(value.size() - 1, ' ');
    for (const Entries& entries : {Entries{entry, "", ""}, Entries{"", "", entry}})
        EXPECT_TRUE(isWhole(withMember(entries, value)));
}

TEST(GivenUpObjectsTest, BringsBackStringsAndContentOfEncryptedFiles) {
    QByteArray bytes = rewritten(document({"", "/Mark 1", "/Note (geheim) /Mark 1"}), [](QPDFWriter& writer) {
        writer.setR3EncryptionParametersInsecure("", "o", true, true, true, true, true, true, qpdf_r3p_full);
        writer.setObjectStreamMode(qpdf_o_disable);
    });
    ASSERT_EQ(bytes.count("/Mark 1"), 2);
    const auto opened = documentOf(bytes.replace("/Mark 1", "/Mark 99999999999999999999"));
    ASSERT_TRUE(opened);
    EXPECT_TRUE(isWhole(bytes));
    Output output(makePagePdf(*opened, 0));
    EXPECT_EQ(output.drawn("/P")
                  .getDict()
                  .getKey("/Resources")
                  .getKey("/Font")
                  .getKey("/F")
                  .getKey("/Note")
                  .getStringValue(),
              "geheim");
}

TEST(GivenUpObjectsTest, KeepsLayersTogetherWhereALaterPageIsDamaged) {
    const std::string layers = "/Resources << /Properties << /L 1001 0 R >> /Font << /F 1000 0 R >> >>";
    const auto document = PdfBuilder()
                              .page("/Resources << /Properties << /L 1001 0 R >> >>", mark)
                              .page(layers, mark)
                              .object("<< /Type /Font /Odd 99999999999999999999 >>")
                              .object("<< /Type /OCG /Name (L) >>")
                              .catalog("/OCProperties << /OCGs [1001 0 R] /D << /OFF [1001 0 R] >> >>")
                              .document();
    MemoryConsumer consumer;
    const auto context = PDFContext::create(consumer, *document);
    for (qsizetype i = 0; i < 2; ++i) {
        context->beginPage();
        context->drawPage(i, DisplayBox::mediaBox);
        context->endPage();
    }
    context->close();
    EXPECT_TRUE(context->incompletePages().isEmpty());
    Output output(consumer.bytes());
    const QPDFObjGen layer =
        output.root().getKey("/OCProperties").getKey("/OCGs").getArrayItem(0).getObjGen();
    for (size_t i = 0; i < 2; ++i) {
        QPDFObjectHandle resources = output.page(i)
                                         .getKey("/Resources")
                                         .getKey("/XObject")
                                         .getKey("/P")
                                         .getDict()
                                         .getKey("/Resources");
        EXPECT_EQ(resources.getKey("/Properties").getKey("/L").getObjGen(), layer);
        EXPECT_EQ(resources.getKey("/Font").getKey("/F").isDictionary(), i == 1);
    }
}

TEST(TokenMendingTest, ReplacesOnlyWhatTheLibraryDoesNotTake) {
    const auto mended = [](std::string text) {
        applyMends(mendsOfObject(text, 0), text.data());
        return text;
    };
    const std::string sound =
        "<< /A#20B (a\\)>>{) <48 49> /B [1 -2 +3. .5 true null 5 0 R] % {foo\n >> endobj {";
    EXPECT_EQ(mended(sound), sound);
    EXPECT_EQ(mended("[ 000000000000000000000000612 ]"), "[ 000000000000000000000000612 ]");
    EXPECT_EQ(mended("[ -99999999999999999999 foo {x} ab <4x> ]"),
              "[ -2147483647           0    0  0  <4 > ]");
    EXPECT_EQ(mended("<< /Length 5 0 R >> stream {"), "<< /Length 0     >> stream {");
    EXPECT_EQ(mended("<< /Length 5 0 R >> endobj"), "<< /Length 5 0 R >> endobj");
    EXPECT_EQ(mended("(no end"), "(no end");
    EXPECT_EQ(mended("<no end"), "<no end");
}
