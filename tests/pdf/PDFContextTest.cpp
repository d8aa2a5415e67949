#include "base/Error.h"
#include "engine/PageComposer.h"
#include "engine/objects/ContentText.h"
#include "engine/objects/PDFValues.h"
#include "pdf/PDFContext.h"
#include "pdf/PagePdf.h"
#include "picture/DeflateStream.h"
#include "tests/support/DrawnPdf.h"
#include "tests/support/GTestQt.h"
#include "tests/support/GermanNumbers.h"
#include "tests/support/TestDocuments.h"
#include "tests/support/TestImages.h"

#include <cmath>
#include <cstdlib>
#include <map>
#include <new>
#include <string>
#include <sys/resource.h>
#include <vector>

using namespace vellmora;
using namespace vellmora::test;

namespace {

/// Fails as a full disk does.
class FailingConsumer : public PDFDataConsumer {
public:
    void write(const char*, qint64) override { throw Error(Error::posixDomain, 28, QStringLiteral("voll")); }
    void finish() override {}
};

}  // namespace

TEST(PDFContextTest, WritesNumbersWithoutExponents) {
    EXPECT_EQ(pdfNumber(0.1), "0.1");
    EXPECT_EQ(pdfNumber(1e-9), "0");
    EXPECT_EQ(pdfNumber(-0.0000001), "0");
    EXPECT_EQ(pdfNumber(1200), "1200");
    EXPECT_EQ(pdfNumber(123456789.125), "123456789.125");
}

TEST(PDFContextTest, WritesNoNumberThatReadersCannotTake) {
    EXPECT_EQ(pdfNumber(9.3e18), "2147483647");
    EXPECT_EQ(pdfNumber(-1e300), "-2147483647");
    EXPECT_EQ(pdfNumber(std::nan("")), "0");
    PdfBuilder source;
    source
        .page(
            "/MediaBox [0 0 9300000000000000000.0 100] /Annots [<< /Subtype /Square /C [1 0 0] /Rect [0 0 "
            "99999999999999999999.0 50] >>]")
        .page();
    const auto written = documentOf(drawFirstPage(source));
    ASSERT_TRUE(written);
    EXPECT_EQ(written->pageCount(), 1);
    EXPECT_EQ(written->page(0)->bounds(DisplayBox::mediaBox), (Rect{0, 0, 2147483647, 100}));
}

TEST(PDFContextTest, KeepsTheBoxesThatSayWhatIsShownOfThePage) {
    const auto boxesOf = [](const PdfBuilder& source) {
        Output output(drawFirstPage(source));
        std::map<std::string, std::vector<double>> boxes;
        for (const char* key : {"/MediaBox", "/CropBox", "/BleedBox", "/TrimBox", "/ArtBox"})
            boxes[key] = numbersOf(output.page().getKey(key));
        return boxes;
    };
    using Box = std::vector<double>;
    const auto own = boxesOf(PdfBuilder()
                                 .page("/MediaBox [10 20 610 820] /CropBox [500 700 50 60.5] /TrimBox 1000 0 "
                                       "R /Rotate 90 /ArtBox [0 0 0 9]")
                                 .object("[70 80 400.25 600]"));
    EXPECT_EQ(own.at("/MediaBox"), (Box{10, 20, 610, 820}));
    EXPECT_EQ(own.at("/CropBox"), (Box{50, 60.5, 500, 700}));
    EXPECT_EQ(own.at("/TrimBox"), (Box{70, 80, 400.25, 600}));
    EXPECT_TRUE(own.at("/BleedBox").empty() && own.at("/ArtBox").empty());
    const auto wild = boxesOf(PdfBuilder().page("/CropBox [-9e30 -1e30 300 1e30] /BleedBox [0 0 (x) 1]"));
    EXPECT_TRUE(wild.at("/CropBox").empty()) << "no number of a PDF has an exponent";
    EXPECT_TRUE(wild.at("/BleedBox").empty());
    EXPECT_TRUE(boxesOf(pages(1)).at("/CropBox").empty());
}

TEST(PDFContextTest, KeepsACropBoxThatAPageInherits) {
    PdfBuilder source;
    source.page().catalog("/Pages 1000 0 R");
    source.object("<< /Type /Pages /Kids [ 2 0 R ] /Count 1 /CropBox [9 9 99 99] >>");
    EXPECT_EQ(numbersOf(Output(drawFirstPage(source)).page().getKey("/CropBox")),
              (std::vector<double>{9, 9, 99, 99}));
}

TEST(PDFContextTest, ReadsAndWritesFractionsWhereTheLocaleHasADecimalComma) {
    const GermanNumbers numbers;
    if (!numbers.areInUse())
        GTEST_SKIP() << "no German locale is installed, nor the means to make one";
    PdfBuilder source;
    source
        .page(
            "/MediaBox [0 0 595.75 +841.5] /Annots [<< /Subtype /Stamp /Rect [.5 0 1.5 1] /AP << /N 1000 0 R "
            ">> "
            ">> << /Subtype /FreeText /Rect [0 0 90 90] /DA (/F 9.5 Tf) /Contents (a) >>]")
        .stream("/Subtype /Form /BBox [0 0 0.5 0.5]", "");
    Output output(drawFirstPage(source));
    EXPECT_EQ(output.page().getKey("/MediaBox").unparse(), "[ 0 0 595.75 841.5 ]");
    EXPECT_NE(output.pageContent().find("q 2 0 0 2 0.5 0 cm /A0 Do Q"), std::string::npos)
        << output.pageContent();
    EXPECT_NE(output.contentOf("/A1").find("/F0 9.5 Tf"), std::string::npos);
}

TEST(PDFContextTest, CarriesASingleContentStreamOverByteForByte) {
    // Not valid Flate data: what is damaged is carried over too.
    PdfBuilder source;
    source.page("/Contents 1000 0 R")
        .stream("/Filter /FlateDecode",
                "x\x9c"
                "damaged");
    Output output(drawFirstPage(source));
    QPDFObjectHandle form = output.drawn("/P");
    EXPECT_EQ(text(form.getRawStreamData()),
              "x\x9c"
              "damaged");
    EXPECT_TRUE(form.getDict().getKey("/Filter").isNameAndEquals("/FlateDecode"));
}

TEST(PDFContextTest, JoinsSeveralContentStreamsWithoutGluingTheirTokens) {
    PdfBuilder source;
    source.page("/Contents [1000 0 R 1001 0 R (odd) 1002 0 R]")
        .stream("", "q")
        .stream("", "1 0 0 rg")
        .stream("", "Q");
    Output output(drawFirstPage(source));
    EXPECT_EQ(output.contentOf("/P"), "q\n1 0 0 rg\nQ\n");
}

TEST(PDFContextTest, CarriesValuesOfEveryKind) {
    const std::string values =
        R"([ / 5 /A#20B#2f (a\)b\\) <00ff> -1.50 .5 true null << / << /B [ ] >> /C#23 / >> () [ / / ] ])";
    PdfBuilder source;
    source.page("/Group << /S /Transparency /Values " + values + " >>");
    Output output(drawFirstPage(source));
    EXPECT_EQ(output.page().getKey("/Group").getKey("/Values").unparse(),
              QPDFObjectHandle::parse(values).unparse());
}

TEST(PDFContextTest, CarriesNamesThatHaveNumberSigns) {
    PdfBuilder source;
    source.page("/Group << /A#2341 /C#23 /B#zz /x#ff!y >>");
    Output output(drawFirstPage(source));
    QPDFObjectHandle group = output.page().getKey("/Group");
    EXPECT_TRUE(group.getKey("/A#41").isNameAndEquals("/C#")) << group.unparse();
    EXPECT_TRUE(group.getKey(std::string("/B\0zz", 5)).isNameAndEquals("/x\xff!y"))
        << "a stray sign stays one, which libqpdf keeps as a null character";
}

TEST(PDFContextTest, KeepsThePagesAttributesAndNothingElseOfTheDocument) {
    PdfBuilder source;
    source
        .page(
            "/Rotate 90 /UserUnit 2 /Group << /S /Transparency >> /MediaBox [10 20 300 400] /CropBox [20 30 "
            "90 90] "
            "/Metadata 1000 0 R /Annots [<< /Subtype /Link /Rect [0 0 9 9] >>] /AA << /O << /S /JavaScript "
            ">> >> /StructParents 3 /Resources << /XObject << /I 1001 0 R >> >>",
            "/I Do")
        .stream("", "metadata")
        .stream("/Subtype /Image /Metadata 1000 0 R /StructParent 7", "")
        .catalog(
            "/Outlines << >> /AcroForm << /Fields [] >> /OpenAction << /S /JavaScript /JS (x) >> /Names << "
            ">> "
            "/OCProperties << /OCGs [] /D << >> >> /OutputIntents [<< /S /GTS_PDFX >>] /Metadata 1000 0 R");
    Output output(drawFirstPage(source));
    QPDFObjectHandle page = output.page();
    EXPECT_EQ(page.getKey("/Rotate").getIntValue(), 90);
    EXPECT_EQ(page.getKey("/UserUnit").getIntValue(), 2);
    EXPECT_TRUE(page.getKey("/Group").isDictionary());
    EXPECT_EQ(page.getKey("/MediaBox").unparse(), "[ 10 20 300 400 ]");
    for (const char* key : {"/Annots", "/Metadata", "/AA", "/StructParents"})
        EXPECT_FALSE(page.hasKey(key)) << key;
    QPDFObjectHandle picture =
        output.drawn("/P").getDict().getKey("/Resources").getKey("/XObject").getKey("/I").getDict();
    EXPECT_EQ(picture.getKeys(), (std::set<std::string>{"/Length", "/Subtype"}));
    EXPECT_EQ(output.root().getKeys(),
              (std::set<std::string>{"/OCProperties", "/OutputIntents", "/Pages", "/Type"}));
    EXPECT_FALSE(output.trailer().hasKey("/Info"));
}

/// Else a document of n pages with n fonts in their tree would make a file of n × n.
TEST(PDFContextTest, PagesThatMayNeedAllOfTheirTreesResourcesShareOneCopy) {
    std::string fonts;
    for (int i = 0; i < 20; ++i)
        fonts += "/F" + std::to_string(i) + " 9 0 R";
    const auto document = documentOf(QByteArray::fromStdString(
        "%PDF-1.7\n1 0 obj<</Type/Catalog/Pages 2 0 R>>endobj\n"
        "2 0 obj<</Type/Pages/Kids[3 0 R 4 0 R]/Count 2/MediaBox[0 0 9 9]/Resources<</Font<<" +
        fonts +
        ">> >> >>endobj\n3 0 obj<</Type/Page/Parent 2 0 R/Contents 5 0 R>>endobj\n"
        "4 0 obj<</Type/Page/Parent 2 0 R/Contents 5 0 R>>endobj\n"
        "5 0 obj<</Filter/Unknown/Length 1>>stream\nx\nendstream endobj\n"
        "9 0 obj<</Type/Font/Subtype/Type1/BaseFont/Helvetica>>endobj\n"));
    MemoryConsumer consumer;
    const auto context = PDFContext::create(consumer, *document);
    for (qsizetype page = 0; page < 2; ++page) {
        context->beginPage();
        context->drawPage(page, DisplayBox::mediaBox);
        context->endPage();
    }
    context->close();
    Output output(consumer.bytes());
    const auto resources = [&](size_t page) {
        QPDFObjectHandle form = output.page(page).getKey("/Resources").getKey("/XObject").getKey("/P");
        return form.getDict().getKey("/Resources");
    };
    EXPECT_EQ(resources(0).getKey("/Font").getKeys().size(), 20U);
    ASSERT_TRUE(resources(0).isIndirect());
    EXPECT_EQ(resources(0).getObjGen(), resources(1).getObjGen());
}

TEST(PDFContextTest, StoresAPictureOnceAndItsAlphaOnlyWhereItIsNeeded) {
    MemoryConsumer consumer;
    const auto document = pages(1).document();
    const auto context = PDFContext::create(consumer, *document);
    const auto opaque = context->addPicture(Image(plainImage(4, 2, QColor(255, 0, 0))));
    const auto glassy = context->addPicture(Image(plainImage(4, 2, QColor(255, 0, 0, 100))));
    context->beginPage();
    context->drawPicture(opaque, {1, 2, 30, 40});
    context->drawPicture(glassy, {1, 2, 30, 40});
    context->drawPicture(opaque, {50, 2, 30, 40});
    context->endPage();
    context->close();
    Output output(consumer.bytes());
    EXPECT_FALSE(output.drawn("/S0").getDict().hasKey("/SMask"));
    EXPECT_EQ(text(output.drawn("/S1").getDict().getKey("/SMask").getStreamData()),
              std::string(8, char(100)));
    EXPECT_EQ(output.pageContent(),
              "q 30 0 0 40 1 2 cm /S0 Do Q\nq 30 0 0 40 1 2 cm /S1 Do Q\nq 30 0 0 40 50 2 cm /S0 Do Q\n");
}

TEST(PDFContextTest, SaysPlainlyWhatSomeReadersDoNotFollow) {
    std::string profile(128, '\0');
    profile.replace(16, 4, "RGB ").replace(36, 4, "acsp");
    const std::string picture = "/Subtype /Image /Width 1 /Height 1 /BitsPerComponent 8 /ColorSpace ";
    PdfBuilder source;
    source.page("/Resources << /XObject << /I 1000 0 R /J 1001 0 R >> >>", "/I Do /J Do")
        .stream(picture + "[/ICCBased 1002 0 R] /Filter 1004 0 R", "41>")
        .stream(picture + "[/Indexed [/ICCBased 1003 0 R] 0 <00>]", "A")
        .stream("/N 1", profile)
        .stream("/N 1", profile.replace(16, 4, "GRAY"))
        .object("/ASCIIHexDecode");
    Output output(drawFirstPage(source));
    QPDFObjectHandle pictures = output.drawn("/P").getDict().getKey("/Resources").getKey("/XObject");
    QPDFObjectHandle first = pictures.getKey("/I").getDict();
    EXPECT_TRUE(first.getKey("/ColorSpace").isNameAndEquals("/DeviceGray"))
        << "an RGB profile for one component";
    EXPECT_FALSE(first.getKey("/Filter").isIndirect());
    EXPECT_TRUE(first.getKey("/Filter").isNameAndEquals("/ASCIIHexDecode"));
    EXPECT_TRUE(pictures.getKey("/J").getDict().getKey("/ColorSpace").getArrayItem(1).isArray())
        << "a sound one";
}

TEST(PDFContextTest, LeavesOutWhatOnlyOtherPagesUse) {
    std::string resources = " /X#zz 1000 0 R";
    for (int i = 0; i < 19; ++i)
        resources += " /X" + std::to_string(i) + " 100" + std::to_string(i % 2) + " 0 R";
    const std::string page = "/Resources << /XObject <<" + resources + " >> >>";
    const auto drawnResources = [&](const std::string& content, const std::string& formEntries) {
        PdfBuilder source;
        source.page(page, content).stream("/Subtype /Image", "").stream("/Subtype /Form" + formEntries, "");
        Output output(drawFirstPage(source));
        return output.drawn("/P").getDict().getKey("/Resources").getKey("/XObject").getKeys();
    };
    EXPECT_EQ(drawnResources("/X2 Do (/X4)Tj/X#36 Do BI /W 1 ID /#\xff#1 EI", ""),
              (std::set<std::string>{"/X2", "/X4", "/X6"}));
    EXPECT_EQ(drawnResources("/X#zz Do", "").size(), 1U) << "no escape";
    EXPECT_EQ(drawnResources("/X1 Do", "").size(), 20U) << "a form that draws with the page's resources";
    EXPECT_EQ(drawnResources("/X1 Do", " /Resources << >>").size(), 1U);
    PdfBuilder source;
    source.page(page + " /Contents 1002 0 R").stream("", "").stream("", "").stream("/Filter /Odd", "?");
    EXPECT_EQ(Output(drawFirstPage(source))
                  .drawn("/P")
                  .getDict()
                  .getKey("/Resources")
                  .getKey("/XObject")
                  .getKeys()
                  .size(),
              20U)
        << "content that only other readers may decode";
}

TEST(PDFContextTest, CarriesContentWithParametersThatTheLibraryDoesNotKnow) {
    std::string fonts;
    for (int i = 0; i < 13; ++i)
        fonts += " /F" + std::to_string(i) + " << >>";
    PdfBuilder source;
    source.page("/Contents 1000 0 R /Resources << /Font <<" + fonts + " >> >>")
        .stream("/Filter /FlateDecode /DecodeParms << /Predictor 15 /Colors 99999 /BitsPerComponent 32 >>",
                "data");
    Output output(drawFirstPage(source));
    ASSERT_TRUE(output.drawn("/P").isStream());
    EXPECT_EQ(text(output.drawn("/P").getRawStreamData()), "data");
}

TEST(PDFContextTest, JoinsDamagedContentAsFarAsOtherReadersGet) {
    std::string packed =
        deflated(filledRect("1 0 0", "0 0 9 9") + std::string(3000, '\n') + "lost at the end");
    packed.resize(packed.size() - 8);
    PdfBuilder source;
    source.page("/Contents [1000 0 R 1001 0 R 1002 0 R]")
        .stream("", "q")
        .stream("/Filter /FlateDecode", packed)
        .stream("/Filter /FlateDecode /DecodeParms << /Predictor 15 /Colors 99999 >>", deflated("0 g"));
    Output output(drawFirstPage(source));
    EXPECT_NE(output.contentOf("/P").find("1 0 0 rg 0 0 9 9 re f"), std::string::npos);
    EXPECT_NE(output.contentOf("/P").find("0 g"), std::string::npos) << "odd parameters count as none";
}

TEST(PDFContextTest, NamesPagesOnWhichOtherReadersMayShowMore) {
    std::string rows;
    for (unsigned i = 0; i < 3000; ++i)
        rows += std::string("\0q ", 3) + static_cast<char>('0' + (i * 2654435761U >> 20U) % 10);
    // After a whole block one of a kind that there is not.
    DeflateStream stream(Z_DEFAULT_COMPRESSION, Z_DEFAULT_STRATEGY);
    stream.add(reinterpret_cast<const unsigned char*>(rows.data()), rows.size());
    const std::string damaged = "\x78\x9c" + stream.finish(false).blocks + std::string(20, '\xff');
    const auto document =
        PdfBuilder()
            .page("/Contents [1000 0 R 1001 0 R]")
            .page("/Contents [1000 0 R 1002 0 R]")
            .page("/Contents [1000 0 R 1003 0 R]")
            .page("/Contents [1000 0 R 1004 0 R]")
            .stream("", "q")
            .stream("/Filter /ASCIIHexDecode", "51>")
            .stream("/Filter /ASCIIHexDecode", "51 no digits >")
            .stream("/Filter /JBIG2Decode", "nobody takes this for content")
            .stream("/Filter /FlateDecode /DecodeParms << /Predictor 12 /Columns 3 >>", damaged)
            .document();
    MemoryConsumer consumer;
    const auto context = PDFContext::create(consumer, *document);
    for (qsizetype i = 0; i < document->pageCount(); ++i) {
        context->beginPage();
        context->drawPage(i, DisplayBox::mediaBox);
        context->endPage();
    }
    context->close();
    EXPECT_EQ(context->incompletePages(), (QList<qsizetype>{1, 3}));
}

// The sanitizers take more memory than the test leaves.
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
TEST(PDFContextDeathTest, FailsForWantOfMemoryRatherThanCutContentShort) {
    constexpr size_t length = 200 << 20;
    const std::string packed = deflated(std::string(length, ' '));
    PdfBuilder source;
    source.page("/Contents [1000 0 R 1000 0 R]").stream("/Filter /FlateDecode", packed);
    const auto drawWithLittleMemory = [&source] {
        struct rlimit limit {};
        ::getrlimit(RLIMIT_AS, &limit);
        limit.rlim_cur = 2 * length;
        ::setrlimit(RLIMIT_AS, &limit);
        try {
            const ParsedDocument document(std::make_shared<const SnapshotReader>(source.bytes()));
            MemoryConsumer consumer;
            PageComposer composer(consumer);
            composer.beginPage();
            composer.drawPage(document, 0, DisplayBox::mediaBox);
            composer.endPage();
            composer.close();
        } catch (const std::bad_alloc&) {
            std::exit(0);
        }
        std::exit(1);
    };
    EXPECT_EXIT(drawWithLittleMemory(), testing::ExitedWithCode(0), "");
}
#endif

TEST(PDFContextTest, PassesTheConsumersErrorOn) {
    FailingConsumer consumer;
    const auto document = pages(1).document();
    const auto context = PDFContext::create(consumer, *document);
    context->beginPage();
    context->endPage();
    EXPECT_THROW(context->close(), Error);
}

TEST(PageDrawingTest, ShowsTheCropBoxOfTheTurnedPage) {
    const auto document = PdfBuilder().page("/Rotate 90 /CropBox [10 20 110 220]").document();
    Output output(makePagePdf(*document, 0));
    EXPECT_EQ(output.page().getKey("/MediaBox").unparse(), "[ 10 20 110 220 ]");
    EXPECT_EQ(output.page().getKey("/Rotate").getIntValue(), 90);
    EXPECT_TRUE(makePagePdf(*document, 1).isEmpty());
}
