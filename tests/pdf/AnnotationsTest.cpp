#include "tests/support/DrawnPdf.h"
#include "tests/support/GTestQt.h"

#include <gmock/gmock.h>
#include <sstream>

using namespace vellmora;
using namespace vellmora::test;
using testing::HasSubstr;
using testing::Not;

namespace {

const std::string ownAppearance = "BT [(o) -20 (wn)] TJ ET";
const std::string squareForm = "/Subtype /Form /BBox [0 0 10 10]";

/// The only annotation of a page, drawn.
class Drawn {
public:
    explicit Drawn(const std::string& annotation, const std::string& form = {}, const std::string& page = {})
        : m_output(drawFirstPage(PdfBuilder()
                                     .page(page + " /Annots [<< /Type /Annot " + annotation + " >>]")
                                     .stream(squareForm, ownAppearance)
                                     .object("<< /Type /Font /Subtype /Type1 /BaseFont /Courier "
                                             "/Encoding /WinAnsiEncoding >>")
                                     .catalog("/AcroForm << " + form + " >>"))) {}

    bool isSeen() { return m_output.drawn("/A0").isStream(); }
    std::string content() { return isSeen() ? m_output.contentOf("/A0") : std::string(); }
    QPDFObjectHandle dictionary() { return m_output.drawn("/A0").getDict(); }
    /// Of a drawing that is blended with the page as one.
    QPDFObjectHandle group() { return dictionary().getKey("/Resources").getKey("/XObject").getKey("/D0"); }
    std::string pageContent() { return m_output.pageContent(); }
    QPDFObjectHandle page() { return m_output.page(); }

private:
    Output m_output;
};

std::string field(const std::string& entries) {
    return "/Subtype /Widget /Rect [100 100 200 120] /DA (/F 10 Tf 1 0 0 rg) /DR << /Font << /F 1001 0 R >> "
           ">> " +
           entries;
}

/// Where each string of a content stream is shown, as "x y (string)" lines.
std::string shownText(const std::string& content) {
    std::istringstream lines(content);
    std::string result;
    std::string position;
    for (std::string line; std::getline(lines, line);) {
        if (line.ends_with(" Tm"))
            position = line.substr(8, line.size() - 11);
        else if (line.ends_with(" Tj"))
            result += position + " " + line.substr(0, line.size() - 3) + "\n";
    }
    return result;
}

}  // namespace

TEST(AnnotationsTest, PaintsOrdinaryOnesFirstAndWhatIsHiddenNotAtAll) {
    PdfBuilder source;
    source
        .page(
            "/Annots [<< /Subtype /Widget /Rect [100 100 120 140] /AS /On /AP << /N << /On 1000 0 R >> >> >>"
            "<< /Subtype /Stamp /Rect [0 0 10 10] /AP << /N 1001 0 R >> >>"
            "<< /Subtype /Stamp /F 2 /Rect [0 0 10 10] /AP << /N 1000 0 R >> >>"
            "<< /Subtype /Stamp /F 32 /Rect [0 0 10 10] /AP << /N 1000 0 R >> >>"
            "<< /Subtype /Popup /Rect [0 0 10 10] /AP << /N 1000 0 R >> >>"
            "<< /Subtype /Link /Rect [0 0 10 10] /C [1 0 0] /Border [0 0 3] >>"
            "<< /Subtype /Widget /FT /Btn /Rect [0 0 9 9] /AS /Off /AP << /N << /On 1000 0 R >> >> >> (odd)]")
        .stream(squareForm, "% field")
        .stream(squareForm, "% stamp");
    Output output(drawFirstPage(source));
    EXPECT_EQ(output.pageContent(), "q /P Do Q\nq /A0 Do Q\nq 2 0 0 4 100 100 cm /A1 Do Q\n");
    EXPECT_EQ(output.contentOf("/A1"), "% field");
}

TEST(AnnotationsTest, KeepsAnUprightOneUprightAboutItsUpperLeftCorner) {
    Drawn drawn("/Subtype /Stamp /F 16 /Rect [100 200 110 210] /AP << /N 1000 0 R >>", "", "/Rotate 90");
    // The corner (0, 10) of the form stays at (100, 210); its right edge points upwards on the paper.
    EXPECT_THAT(drawn.pageContent(), HasSubstr("q 0 1 -1 0 110 210 cm /A0 Do Q"));
}

TEST(AnnotationsTest, PaintsAnAnnotationOfALayerOnThatLayer) {
    Drawn drawn("/Subtype /Stamp /OC << /Type /OCG /Name (L) >> /Rect [0 0 10 10] /AP << /N 1000 0 R >>");
    EXPECT_THAT(drawn.pageContent(), HasSubstr("/OC /A0 BDC\nq /A0 Do Q\nEMC\n"));
    EXPECT_TRUE(drawn.page().getKey("/Resources").getKey("/Properties").getKey("/A0").isDictionary());
}

TEST(AnnotationsTest, DrawsMarkedTextThatBringsNoAppearance) {
    const std::string quad = " /Rect [0 0 100 20] /QuadPoints [10 20 90 20 10 5 90 5] /C [1 1 0]";
    Drawn highlight("/Subtype /Highlight" + quad + " /CA 0.5");
    EXPECT_THAT(text(highlight.group().getStreamData()), HasSubstr("1 1 0 rg"));
    QPDFObjectHandle state = highlight.dictionary().getKey("/Resources").getKey("/ExtGState").getKey("/G0");
    EXPECT_TRUE(state.getKey("/BM").isNameAndEquals("/Multiply")) << "the text under it stays black";
    EXPECT_EQ(state.getKey("/ca").getNumericValue(), 0.5);
    EXPECT_FALSE(Drawn("/Subtype /Highlight /Rect [0 0 9 9]").isSeen())
        << "no colour: a black bar hides the text";
    for (const char* subtype : {"/Underline", "/StrikeOut", "/Squiggly"}) {
        Drawn line(std::string("/Subtype ") + subtype + quad);
        EXPECT_THAT(line.content(), HasSubstr("1 1 0 RG")) << subtype;
        EXPECT_THAT(line.content(), testing::EndsWith("S\n")) << subtype;
    }
    EXPECT_TRUE(Drawn("/Subtype /Underline /Rect [0 0 100 20]").isSeen()) << "black, over its rectangle";
}

TEST(AnnotationsTest, DrawsShapesThatBringNoAppearance) {
    const std::string colors = " /C [1 0 0] /IC [0 1 0] /BS << /W 2 /S /D /D [4 1] >>";
    EXPECT_EQ(Drawn("/Subtype /Square /Rect [10 10 30 50] /RD [1 2 3 4]" + colors).content(),
              "1 0 0 RG\n0 1 0 rg\n2 w\n[ 4 1 ] 0 d\n12 13 14 32 re\nB\n");
    EXPECT_EQ(Drawn("/Subtype /Square /Rect [10 10 30 50]").content(), "1 w\n10.5 10.5 19 39 re\nn\n");
    EXPECT_EQ(Drawn("/Subtype /Line /Rect [0 0 9 9] /L [1 2 3 4] /Border [0 0 5]").content(),
              "5 w\n1 2 m\n3 4 l\nS\n");
    EXPECT_EQ(Drawn("/Subtype /Polygon /Rect [0 0 9 9] /Vertices [1 2 3 4 5 6] /IC [0.5]").content(),
              "0.5 g\n1 w\n1 2 m\n3 4 l\n5 6 l\nh\nf\n");
    EXPECT_EQ(
        Drawn("/Subtype /Ink /Rect [0 0 9 9] /InkList [[1 2 3 4] [(odd)] [7 8]] /C [0 0 0 1]").content(),
        "0 0 0 1 K\n1 w\n1 J 1 j\n1 2 m\n3 4 l\n7 8 m\n7 8 l\nS\n");
    Drawn arrow("/Subtype /PolyLine /Rect [0 0 9 9] /Vertices [0 0 100 0] /LE [/None /ClosedArrow] /C [0]");
    EXPECT_THAT(arrow.content(), testing::EndsWith("91 5.196152 m\n100 0 l\n91 -5.196152 l\nh\nS\n"));
    for (const char* odd : {"/Subtype /Line /L [1 2]", "/Subtype /Ink", "/Subtype /Circle /Rect [1 1 1]",
                            "/Subtype /Polygon /Vertices [(a)]", "/Subtype /Caret /Rect [0 0 9 9]"})
        EXPECT_THAT(Drawn(odd).content(), Not(HasSubstr("S"))) << odd;
}

TEST(AnnotationsTest, SeesThroughAShapeAsOneWhereItsLineLiesOnItsArea) {
    Drawn drawn("/Subtype /Square /Rect [10 10 30 50] /C [1 0 0] /IC [0 1 0] /CA 0.5 /BS << /W 4 >>");
    EXPECT_EQ(drawn.content(), "/G0 gs /D0 Do");
    QPDFObjectHandle state = drawn.dictionary().getKey("/Resources").getKey("/ExtGState").getKey("/G0");
    EXPECT_EQ(state.getKey("/ca").getNumericValue(), 0.5);
    EXPECT_EQ(text(drawn.group().getStreamData()), "1 0 0 RG\n0 1 0 rg\n4 w\n12 12 16 36 re\nB\n");
    EXPECT_TRUE(drawn.group().getDict().getKey("/Group").getKey("/S").isNameAndEquals("/Transparency"));
}

TEST(AnnotationsTest, DoesNotCoverThePageWithAShapeOfNoMeasurableSize) {
    const std::string fill = "/Subtype /Square /C [1 0 0] /IC [1 0 0] /BS << /W 99999999999 >>";
    EXPECT_TRUE(Drawn(fill + " /Rect [0 0 9999999 9999999]").isSeen());
    for (const char* edge :
         {"99999999999.0", "99999999999", "99999999999999999999", "9999999999999999999.5"}) {
        const std::string rect = std::string(" /Rect [0 0 ") + edge + " " + edge + "]";
        EXPECT_FALSE(Drawn(fill + rect).isSeen()) << edge;
    }
}

TEST(AnnotationsTest, WritesTextFieldsThatBringNoAppearance) {
    // Courier: 0.6 em a character.
    Drawn left(field("/FT /Tx /V (Ab\\344)"));
    EXPECT_THAT(left.content(), HasSubstr("1 0 0 rg\n/F 10 Tf"));
    EXPECT_EQ(shownText(left.content()), "2 6.29 <4162e4>\n");
    EXPECT_EQ(
        left.dictionary().getKey("/Resources").getKey("/Font").getKey("/F").getKey("/BaseFont").getName(),
        "/Courier");
    EXPECT_EQ(left.dictionary().getKey("/Matrix").unparse(), "[ 1 0 0 1 100 100 ]");
    EXPECT_EQ(shownText(Drawn(field("/FT /Tx /V (Ab) /Q 2")).content()), "86 6.29 (Ab)\n");
    EXPECT_EQ(shownText(Drawn(field("/FT /Tx /V (Ab) /Ff 8192")).content()), "2 6.29 (**)\n") << "a password";
    EXPECT_EQ(shownText(Drawn(field("/FT /Tx /V (Ab) /Ff 16777216 /MaxLen 4")).content()),
              "9.5 6.29 (A)\n34.5 6.29 (b)\n")
        << "in the middle of cells of 25 points";
    EXPECT_EQ(shownText(Drawn(field("/FT /Tx /V (One two three four five) /Ff 4096")).content()),
              "2 7 (One two three)\n2 -4.56 (four five)\n");
    EXPECT_EQ(
        shownText(Drawn("/Subtype /Widget /FT /Tx /V (low) /Ff 4096 /Rect [0 0 100 12]", "/DA (/F 10 Tf)")
                      .content()),
        "2 2 (low)\n")
        << "no lower than the descenders allow";
    EXPECT_EQ(shownText(Drawn(field("/Parent << /FT /Tx /V (up) >>")).content()), "2 6.29 (up)\n");
    EXPECT_EQ(
        shownText(Drawn("/Subtype /Widget /FT /Tx /V <FEFF20AC> /Rect [0 0 100 20]", "/DA (/Missing 10 Tf)")
                      .content()),
        "2 6.29 <80>\n")
        << "the euro sign in the encoding of the font that stands in";
    const auto framed = [](const std::string& border) {
        return shownText(
            Drawn(field("/FT /Tx /V (Ab) /MK << /BC [0] >> /BS << " + border + " >>")).content());
    };
    EXPECT_EQ(framed("/W 1"), "2 6.29 (Ab)\n") << "as far from a border as the border is wide";
    EXPECT_EQ(framed("/W 3"), "6 6.29 (Ab)\n");
    EXPECT_EQ(framed("/W 1 /S /I"), "4 6.29 (Ab)\n");
    EXPECT_FALSE(Drawn(field("/FT /Sig")).isSeen());
}

TEST(AnnotationsTest, DrawsChoicesAndButtonsThatBringNoAppearance) {
    const std::string options = "/FT /Ch /Opt [[(a) (Alpha)] [(b) (Beta)]] /V (b)";
    EXPECT_EQ(shownText(Drawn(field(options + " /Ff 131072")).content()), "2 6.29 (Beta)\n");
    Drawn list(field(options));
    EXPECT_THAT(shownText(list.content()), testing::AllOf(HasSubstr("(Alpha)"), HasSubstr("(Beta)")));
    EXPECT_THAT(list.content(), HasSubstr("rg\n1 1 98 6.44 re\nf")) << "a bar behind Beta";
    EXPECT_THAT(Drawn(field("/FT /Btn /AS /Yes")).content(), HasSubstr("(4) Tj"));
    EXPECT_THAT(Drawn(field("/FT /Btn /Ff 32768 /AS /Yes /MK << /BC [0] >>")).content(), HasSubstr("(l) Tj"));
    EXPECT_THAT(Drawn(field("/FT /Btn /AS /Off")).content(), Not(HasSubstr("Tj")));
    EXPECT_THAT(Drawn(field("/FT /Btn /Ff 65536 /MK << /CA (Go) /BG [0.5] /R 90 >>")).content(),
                testing::AllOf(HasSubstr("(Go) Tj"), HasSubstr("0.5 g\n0 0 20 100 re")));
    for (const char* oddAngle : {"45", "99999999999999999999.5"}) {
        EXPECT_THAT(Drawn(field(std::string("/FT /Btn /MK << /BG [0.5] /R ") + oddAngle + " >>")).content(),
                    HasSubstr("0.5 g\n0 0 100 20 re"))
            << oddAngle;
    }
    EXPECT_THAT(
        Drawn("/Subtype /FreeText /Rect [0 0 100 50] /DA (/Helv 9 Tf) /Contents (Note) /C [1 1 0]").content(),
        testing::AllOf(HasSubstr("(Note) Tj"), HasSubstr("1 1 0 rg")));
    for (const char* lineBreak : {"\\n", "\\r", "\\r\\n"}) {
        EXPECT_EQ(shownText(Drawn(std::string("/Subtype /FreeText /Rect [0 0 100 50] /DA (/Helv 10 Tf) "
                                              "/Contents (One") +
                                  lineBreak + "two)")
                                .content()),
                  "3 39 (One)\n3 27.44 (two)\n")
            << lineBreak;
    }
}

TEST(AnnotationsTest, WritesAFieldAnewWhereTheFormAsksForItAndItsTextIsOld) {
    const auto drawn = [](const std::string& type, const std::string& form) {
        return Drawn(field(type + " /V (new) /AP << /N 1000 0 R >>"), form).content();
    };
    EXPECT_EQ(drawn("/FT /Tx", ""), ownAppearance);
    EXPECT_THAT(drawn("/FT /Tx", "/NeedAppearances true"), HasSubstr("(new) Tj"));
    EXPECT_EQ(drawn("/FT /Btn", "/NeedAppearances true"), ownAppearance);
    EXPECT_EQ(Drawn(field("/FT /Tx /V (o w n) /AP << /N 1000 0 R >>"), "/NeedAppearances true").content(),
              ownAppearance);
}
