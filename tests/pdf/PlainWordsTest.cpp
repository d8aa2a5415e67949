#include "base/SnapshotReader.h"
#include "engine/file/PlainWords.h"
#include "engine/output/ObjectText.h"
#include "pdf/PagePdf.h"
#include "tests/support/DrawnPdf.h"
#include "tests/support/GTestQt.h"
#include "tests/support/TestDocuments.h"
#include "tests/support/TestPdf.h"

#include <set>
#include <string>
#include <vector>

using namespace vellmora;
using namespace vellmora::test;

namespace {

/// The words in which an object is written anew; empty where they have to be others.
std::string wordsOf(const std::string& value) {
    const SnapshotReader content(pages(1).bytes());
    const auto file = PlainFile::open(content);
    const std::string text = "7 0 obj " + value + " endobj ";
    ObjectText written;
    try {
        PlainObject object;
        object.read(text, 7);
        PlainWords words;
        addPlainWords(words, object, *file);
        written.addNumbered(words, [](int number) { return number; });
    } catch (const NotPlain&) {
        return {};
    }
    return written.text();
}

/// The same by the PDF library.
std::string wordsOfLibrary(const std::string& value) {
    ObjectText words;
    words.addContent(QPDFObjectHandle::parse(value));
    return words.text();
}

/// All that an object of a file leads to within so many steps, but for the pages.
std::string everythingIn(QPDFObjectHandle object, int steps = 12) {
    if (object.isDictionaryOfType("/Pages"))
        return "pages";
    if (steps == 0)
        return "...";
    std::string text;
    if (object.isStream()) {
        // Not every reader follows references there.
        for (const char* key : {"/Filter", "/Length"})
            text += object.getDict().getKey(key).unparse();
        return text + everythingIn(object.getDict(), steps) + vellmora::test::text(object.getRawStreamData());
    }
    if (object.isDictionary()) {
        for (const auto& [key, value] : object.getDictAsMap())
            text += key + ' ' + everythingIn(value, steps - 1) + '\n';
        return '{' + text + '}';
    }
    if (!object.isArray())
        return object.unparseResolved();
    for (const QPDFObjectHandle& item : object.getArrayAsVector())
        text += everythingIn(item, steps - 1) + ' ';
    return '[' + text + ']';
}

QByteArray allPagesOf(const PDFDocument& document) {
    MemoryConsumer consumer;
    const auto context = PDFContext::create(consumer, document);
    for (qsizetype index = 0; index < document.pageCount(); ++index) {
        context->beginPage();
        context->drawPage(index, DisplayBox::mediaBox);
        context->endPage();
    }
    context->close();
    return consumer.bytes();
}

std::string stream(const std::string& entries, const std::string& data) {
    return "<<" + entries + "/Length " + std::to_string(data.size()) + ">>\nstream\n" + data + "\nendstream";
}

/// A page with objects of its own: "@0" to "@9" stand for references to them.
struct PageWithObjects {
    std::string entries;
    std::vector<std::string> objects;

    QByteArray bytes() const {
        PdfBuilder source;
        source.page(withReferences(entries), "0 0 9 9 re f");
        for (const std::string& object : objects)
            source.object(withReferences(object));
        return source.bytes();
    }

    static std::string withReferences(std::string text) {
        for (size_t at = text.find('@'); at != std::string::npos; at = text.find('@'))
            text.replace(at, 2, std::to_string(PdfBuilder::firstExtraObject + text[at + 1] - '0') + " 0 R");
        return text;
    }
};

/// The same document, which the PDF library alone reads.
QByteArray leftToTheLibrary(QByteArray bytes) {
    bytes.replace("trailer\n", "trailer\n% a comment\n");
    return bytes;
}

}  // namespace

TEST(PlainWordsTest, ReadsPlainValuesAsTheLibraryDoes) {
    for (const std::string value :
         {"<</B 1/A<</Z/N/Y[1 2.50 -3 0.0 true]>>/C(some text)/D null/E[null]/a/b/A.B-C+d_e/x>>", "[]",
          "<<>>", "-17", "0", "/Name", "()", "[[[1]][2]/A/B(x)(y)<<>>]", "\r\n[ 1\t2\n3 ]", "false"})
        EXPECT_EQ(wordsOf(value), wordsOfLibrary(value));
    EXPECT_EQ(wordsOf("<</A 12 0 R/B[3 0 R 4 0 R 5]>>"), "<</A 12 0 R/B[3 0 R 4 0 R 5]>>");
}

TEST(PlainWordsTest, LeavesToTheLibraryWhatIsNotPlain) {
    for (const std::string value : {"/A#20B",
                                    "/",
                                    "<</A 1/A 2>>",
                                    "<</A>>",
                                    "<</A 1",
                                    "[1",
                                    "(a(b)c)",
                                    "(a\\)b)",
                                    "(\xe4)",
                                    "(a\nb)",
                                    "<414243>",
                                    "+1",
                                    "007",
                                    "-0",
                                    ".5",
                                    "5.",
                                    "--5",
                                    "1.2.3",
                                    "1e5",
                                    "1234567890123456789",
                                    "0 0 R",
                                    "99999999 0 R",
                                    "1 70000 R",
                                    "[1 % comment\n]",
                                    "{1}",
                                    "word",
                                    "[1 0 Rx]",
                                    "<</A 1]>>",
                                    "[1>>",
                                    "<<(a) 1>>",
                                    "]",
                                    "\xa0"})
        EXPECT_EQ(wordsOf(value), "") << value;
    EXPECT_EQ(wordsOf(std::string(100, '[') + std::string(100, ']')), "");
}

TEST(PlainWordsTest, PagesAreDrawnAsTheLibraryReadsThem) {
    const std::string profile =
        std::string(16, '\0') + "RGB " + std::string(16, '\0') + "acsp" + std::string(36, '\0');
    const std::string hexProfile = QByteArray::fromStdString(profile).toHex().toStdString() + '>';
    const std::string content = stream("/Filter/FlateDecode", "x\x9c\x03");
    const std::string picture = "/Subtype/Image/Width 1/Height 1/BitsPerComponent 8";
    const std::string square = "<</Subtype/Square/Rect[0 0 9 9]/C[1 0 0]>>";
    const std::vector<PageWithObjects> cases{
        {"/Resources @0",
         {"<</Font<</F1 @1>>/ProcSet[/PDF/Text]/Properties null>>",
          "<</Type/Font/Subtype/Type1/Widths @2/FontDescriptor @3>>", "[1 2 3]",
          "<</Type/FontDescriptor/FontFile @4/Metadata @1>>",
          stream("/Filter/FlateDecode/Length1 9", "font")}},
        {"/Contents @0", {content}},
        {"/Contents @0", {"<</Filter/FlateDecode/Length @1>>\nstream\r\nfour\nendstream", "4"}},
        {"/Contents @0", {"<</Filter/FlateDecode/Length 3>>\nstream\nfour\nendstream"}},
        {"/Contents @0", {stream("/Filter[@1]/DecodeParms[null]", "data"), "/FlateDecode"}},
        {"/Resources @0 /Contents @1", {"<</X @2/ColorSpace @2>>", "[@2 @3]", content, content}},
        {"/Resources @0 /Contents @1",
         {"<</ExtGState<</G @2>>>>", stream("/Filter @3", "data"), "<</Type/ExtGState/BM @3>>",
          "/FlateDecode"}},
        {"/Resources @0",
         {"<</ColorSpace<</C[/ICCBased @1]>>>>", stream("/N 1/Filter/ASCIIHexDecode", hexProfile)}},
        {"/Resources @0", {"<</ColorSpace<</C[/ICCBased @1]>>>>", stream("/N 3", profile)}},
        {"/Resources @0",
         {"<</XObject<</I @1/J @3>>>>", stream(picture + "/ColorSpace @2/SMask @3", "p"), "[/ICCBased @4]",
          stream(picture + "/ColorSpace/DeviceGray/Metadata @2", "m"), stream("/N 1", profile)}},
        {"/Resources @0",
         {"<</XObject<</I @1>>>>", stream(picture + "/Filter[/A85 /Fl]/F (a b)/D<41>", "p")}},
        {"/Resources @0",
         {"<</XObject<</I @1/J @2>>>>", stream(picture + "/Filter @3", "p"),
          "<<" + picture + "/Filter/FlateDecode/Length @4>>\nstream\nfour\nendstream", "/FlateDecode", "4"}},
        {"/Resources @0", {"<</A 2 0 R/B 3 0 R/C 4711 0 R/D[2 0 R]/E<</Type/Page>>>>"}},
        {"/Resources @0", {"<</Type/Page/Font<<>>>>"}},
        {"/Resources @0", {"<</XObject @1/Font @2>>", "<</A @3>>", "<</F 1>>", content}},
        {"/Resources @0",
         {"<</Font<</F @1>>>>", "<</Type/Font/Next @2/Same @1>>", "<</Back @1/Type/Font/Name(\\101)>>"}},
        {"/Resources @0", {"[1 2]"}},
        {"/Resources @0 /Group<</S/Transparency/CS[/ICCBased @1]>>", {"<<>>", stream("/N 1", profile)}},
        {"/Group @0", {"<</S/Transparency/CS @1>>", "[/ICCBased @2]", stream("/N 3/Filter/A85", profile)}},
        {"/Group[1] /UserUnit 2.5 /TrimBox[1 1 5.50 5]/ArtBox[9 9]/BleedBox @0 /Rotate 90", {"[1 2 3 4]"}},
        {"/Group null/UserUnit 2/TrimBox[+1 1 5.50 5]/CropBox[0 0 50 700]/Rotate 90 /Contents[@0]",
         {content}},
        {"/Contents[@0 @0] /Resources<</Font<</F @1>>>>", {content, "<<>>"}},
        {"/Contents @0 /Resources<</Font<</F @1>>/XObject<</I @2>>>>",
         {stream("", "(uncompressed) Tj"), "<</Type/Font>>",
          stream("/Subtype/Form/BBox[0 0 9 9]/Resources<</XObject<</I @3>>>>", "uncompressed"),
          stream("/Subtype/Form/BBox[0 0 9 9]/StructParents 7", "uncompressed")}},
        {"/Contents @0", {stream("/DecodeParms<</Predictor 1>>", "uncompressed")}},
        {"/Contents @0", {stream("/DecodeParms null/Filter/FlateDecode", "x\x9c\x03")}},
        {"/Contents @0 /Resources @1", {"<<>>", stream("", "no resources")}},
        {"/Resources<</XObject<</I @0>>>>", {stream("/Subtype/Form/DecodeParms[null]", "uncompressed")}},
        {"/Resources<</XObject<</I @0>>>>", {stream("/Subtype/Form/Filter null", "uncompressed")}},
        {"/Resources @0", {stream("/Font<</F 1>>", "no dictionary")}},
        {"/UserUnit 02", {"1"}},
        {"/Resources @0", {"<</Font<</A 1/B 1/C 1/D 1/E 1/F 1/G 1/H 1/I 1/J 1/K 1/L 1/M 1>>>>"}},
        {"/Annots @0", {"[]"}},
        {"/Annots @0",
         {"[<</Subtype/Square/Rect[0 0 9 9]/C[1 0 0]/Popup @1>>]", "<</Subtype/Popup/Rect[0 0 9 9]>>"}},
        {"/Annots[@0 @1]", {"<</Subtype/Link/Rect[0 0 9 9]>>", square}},
        {"/Annots @0", {"[@1]", square}},
        {"/Annots @0", {"[<</Subtype/Link>> 5 @1]", "<</Subtype/Popup>>"}},
        {"/Annots @0", {"[<</Subtype/Square/Rect[0 0 9 9]/C[1 0 0]>> @1]", "<</Subtype/Popup>>"}},
        {"/Resources @2 /Annots[@0]",
         {"<</Subtype/Widget/Rect[0 0 9 9]/AP<</N @1>>>>",
          stream("/Subtype/Form/BBox[0 0 9 9]/Resources @2", "f"), "<</Font<</F 1>>>>"}},
        {"/Resources @2 /Annots[@0 @4]",
         {"<</Subtype/Stamp/Rect[0 0 9 9]/AP<</N @1>>/OC @3>>",
          stream("/BBox[0 0 9 9]/Filter/FlateDecode/Resources @2", "f"), "<</Font<</F 1>>>>",
          "<</Type/OCG/Name(Ebene)>>", "<</Subtype/Square/Rect[0 0 9 9]/OC<</Type/OCMD/OCGs[@3]>>>>"}},
    };
    for (const PageWithObjects& page : cases) {
        Output shortWay(makePagePdf(*documentOf(page.bytes()), 0));
        Output library(makePagePdf(*documentOf(leftToTheLibrary(page.bytes())), 0));
        const std::string drawn = everythingIn(shortWay.page());
        EXPECT_EQ(drawn, everythingIn(library.page())) << page.entries << page.objects.front();
        EXPECT_EQ(drawn.find("/N 1\n"), std::string::npos) << "the profile is another's";
    }
}

TEST(PlainWordsTest, PagesAreAsLargeAndAsTheyAreTurnedAsTheLibraryHasThem) {
    for (const char* entries : {"/MediaBox[0 0 100.5 +200]",
                                "/MediaBox[.5 -0.25 100. 200]",
                                "/MediaBox[100 200 0 -0.0]",
                                "/MediaBox[0 0 0 100]",
                                "/MediaBox[0 0 100]",
                                "/MediaBox[1 2 100 200 300 400]",
                                "/MediaBox 7",
                                "/MediaBox[]",
                                "/MediaBox[[0] 0 100 200]",
                                "/MediaBox[0 0 (a) 100]",
                                "/MediaBox[0 0 null 100]",
                                "/MediaBox[0 0 999999999999999999 100]",
                                "/MediaBox[1 1 60 70]/Rotate 450",
                                "/Rotate -90.0",
                                "/Rotate[90]",
                                "/Rotate 45",
                                "/Rotate 90.5",
                                "/Rotate/A",
                                "/CropBox[10 10 500 50.125]/TrimBox[20 20 30 30.125]/BleedBox[0 0]/ArtBox 3",
                                "/CropBox[900 900 950 950]/TrimBox[[20] 20 30 30]"}) {
        const QByteArray bytes = PdfBuilder().page(entries).bytes();
        const auto plain = documentOf(bytes);
        const auto library = documentOf(leftToTheLibrary(bytes));
        EXPECT_EQ(*plain->page(0), *library->page(0)) << entries;
        EXPECT_EQ(everythingIn(Output(allPagesOf(*plain)).page()),
                  everythingIn(Output(allPagesOf(*library)).page()))
            << entries;
    }
}

/// The file's own content draws it as before; readers paint no XObject without a subtype.
TEST(PlainWordsTest, AnAppearanceIsWhatItWasAmongThePagesResources) {
    const PageWithObjects page{
        "/Resources<</XObject<</F @1>>>> /Annots[@0]",
        {"<</Subtype/Stamp/Rect[0 0 9 9]/AP<</N @1>>>>", stream("/BBox[0 0 9 9]/Filter/FlateDecode", "f")}};
    Output output(makePagePdf(*documentOf(page.bytes()), 0));
    QPDFObjectHandle resources = output.drawn("/P").getDict().getKey("/Resources");
    EXPECT_FALSE(resources.getKey("/XObject").getKey("/F").getDict().hasKey("/Subtype"));
    EXPECT_TRUE(output.drawn("/A0").getDict().getKey("/Subtype").isNameAndEquals("/Form"));
}

/// The library carries over what all pages have in common; a page in words has the same layer.
TEST(PlainWordsTest, PagesInWordsAreOnTheDocumentsLayers) {
    const auto object = [](int index) {
        return std::to_string(PdfBuilder::firstExtraObject + index) + " 0 R";
    };
    PdfBuilder source;
    source.page("/Resources<</Properties<</L " + object(0) + ">>>>");
    source.object("<</Type/OCG/Name(Ebene)>>");
    source.catalog("/OCProperties<</OCGs[" + object(0) + "]/D<<>>>>/OutputIntents[<</S/GTS_PDFX>>]");
    Output output(allPagesOf(*source.document()));
    QPDFObjectHandle layer = output.root().getKey("/OCProperties").getKey("/OCGs").getArrayItem(0);
    QPDFObjectHandle resources = output.drawn("/P").getDict().getKey("/Resources");
    EXPECT_EQ(layer.unparseResolved(), "<< /Name (Ebene) /Type /OCG >>");
    EXPECT_EQ(resources.getKey("/Properties").getKey("/L").getObjGen(), layer.getObjGen());
    EXPECT_TRUE(output.root().getKey("/OutputIntents").isArray());
}

/// Where one page is left to the library, what was read of it is forgotten, and the pages share what they
/// did.
TEST(PlainWordsTest, PagesInWordsAndByTheLibraryStandSideBySide) {
    PdfBuilder source;
    const auto object = [](int index) {
        return std::to_string(PdfBuilder::firstExtraObject + index) + " 0 R";
    };
    const std::string common = "/Font<</F " + object(0) + ">>/XObject<</L " + object(1) + ">>";
    for (const bool isOdd : {true, false, true, false, false})
        source.page("/Resources<<" + common + "/ExtGState<</G " + object(2) +
                    (isOdd ? "/Odd " + object(3) : "") + ">>>>");
    source.object("<</Type/Font/Self " + object(0) + ">>");
    source.object(stream("/Subtype/Form/BBox[0 0 9 9]/Resources<</Font<</F " + object(0) + ">>>>", "form"));
    source.object("<</Type/ExtGState/CA 1>>");
    source.object("<</Type/ExtGState/Name(\\101)>>");
    const QByteArray bytes = source.bytes();
    QByteArray saved = allPagesOf(*documentOf(bytes));
    Output output(saved);
    Output library(allPagesOf(*documentOf(leftToTheLibrary(bytes))));
    std::set<QPDFObjGen> shared;
    for (size_t i = 0; i < 5; ++i) {
        EXPECT_EQ(everythingIn(output.page(i)), everythingIn(library.page(i))) << i;
        QPDFObjectHandle form = output.page(i).getKey("/Resources").getKey("/XObject").getKey("/P");
        QPDFObjectHandle resources = form.getDict().getKey("/Resources");
        shared.insert(resources.getKey("/Font").getKey("/F").getObjGen());
        shared.insert(resources.getKey("/XObject").getKey("/L").getObjGen());
        shared.insert(resources.getKey("/ExtGState").getKey("/G").getObjGen());
    }
    EXPECT_EQ(shared.size(), 3U);
    QPDF file;
    file.processMemoryFile("saved", saved.constData(), static_cast<size_t>(saved.size()));
    for (QPDFObjectHandle& written : file.getAllObjects())
        EXPECT_FALSE(written.isNull()) << "a number that nothing has";
}

/// Each object of the chain is reached by the one before it.
TEST(PlainWordsTest, LongChainsOfObjectsAreCopied) {
    constexpr int length = 15000;
    PdfBuilder source;
    source.page("/Resources 1000 0 R");
    source.object("<</Font<</F 1001 0 R>>>>");
    for (int i = 1; i <= length; ++i)
        source.object("<</Type/Font/Next " + std::to_string(1001 + i) + " 0 R>>");
    source.object("(the end)");
    Output output(makePagePdf(*source.document(), 0));
    QPDFObjectHandle object = output.drawn("/P").getDict().getKey("/Resources").getKey("/Font").getKey("/F");
    for (int i = 1; i < length; ++i)
        object = object.getKey("/Next");
    EXPECT_EQ(object.getKey("/Next").unparseResolved(), "(the end)");
}

TEST(PlainWordsTest, DamageThatIsMetLateIsMended) {
    PdfBuilder source;
    for (int page = 0; page < 6; ++page) {
        const auto object = [page](int index) {
            return std::to_string(PdfBuilder::firstExtraObject + 2 * page + index) + " 0 R";
        };
        source.page("/Resources " + object(0));
        source.object("<</Font<</F " + object(1) + ">>>>");
        source.object("<</A 1>>");
    }
    QByteArray bytes = source.bytes();
    const std::string whole = everythingIn(Output(allPagesOf(*documentOf(bytes))).page(4));
    // A number that the library gives the whole object up for.
    bytes.replace(bytes.lastIndexOf("/A 1>>"), 6, "/A 99999999999999999999>>");
    Output output(allPagesOf(*documentOf(bytes)));
    EXPECT_EQ(everythingIn(output.page(4)), whole);
    EXPECT_NE(everythingIn(output.page(5)).find("/A 2147483647"), std::string::npos)
        << everythingIn(output.page(5));
}

TEST(PlainWordsTest, AnAppearanceWhoseDamageIsMetLateIsPaintedOnce) {
    PdfBuilder source;
    for (int page = 0; page < 3; ++page) {
        const int first = PdfBuilder::firstExtraObject + 2 * page;
        source.page("/Annots[" + std::to_string(first) + " 0 R]");
        source.object("<</Subtype/Stamp/Rect[0 0 9 9]/AP<</N " + std::to_string(first + 1) + " 0 R>>>>");
        source.object(stream("/Subtype/Form/BBox[0 0 9 9]/A 1", "f"));
    }
    QByteArray bytes = source.bytes();
    bytes.replace(bytes.lastIndexOf("/A 1"), 4, "/A 99999999999999999999");
    Output output(allPagesOf(*documentOf(bytes)));
    const auto contentOf = [&output](size_t page) {
        return text(output.page(page).getKey("/Contents").getStreamData());
    };
    EXPECT_NE(contentOf(1).find("/A0 Do"), std::string::npos);
    EXPECT_EQ(contentOf(2), contentOf(1));
    QPDFObjectHandle painted = output.page(2).getKey("/Resources").getKey("/XObject").getKey("/A0");
    EXPECT_EQ(text(painted.getStreamData()), "f");
}
