#include "tests/support/DrawnPdf.h"
#include "tests/support/GTestQt.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <map>
#include <set>

using namespace vellmora;
using namespace vellmora::test;
using testing::HasSubstr;

namespace {

constexpr int helvetica = PdfBuilder::firstExtraObject;

std::string hexadecimal(const QString& text) {
    std::string digits;
    for (const QChar unit : text)
        digits += QString::asprintf("%04X", unit.unicode()).toStdString();
    return '<' + digits + '>';
}

std::string textString(const QString& text) {
    return "<FEFF" + hexadecimal(text).substr(1);
}

std::string field(const QString& value, const std::string& entries = {}) {
    return "<< /Subtype /Widget /FT /Tx /Rect [100 100 300 120] /DA (/H 10 Tf) /V " + textString(value) +
           ' ' + entries + " >>";
}

/// A page with fields, whose form has Helvetica as /H.
PdfBuilder form(const std::string& fields, const std::string& entries = {}) {
    return PdfBuilder()
        .page("/Annots [" + fields + "]")
        .object("<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica /Encoding /WinAnsiEncoding >>")
        .catalog("/AcroForm << /DR << /Font << /H " + std::to_string(helvetica) + " 0 R >> >> " + entries +
                 " >>");
}

/// A saved page's text, read through the fonts that the page names.
class SavedText {
public:
    explicit SavedText(const PdfBuilder& source) : m_output(drawFirstPage(source)) {}

    std::string content(const std::string& name = "/A0") {
        return m_output.drawn(name).isStream() ? m_output.contentOf(name) : std::string();
    }
    QPDFObjectHandle font(const std::string& name, const std::string& fontName) {
        return m_output.drawn(name).getDict().getKey("/Resources").getKey("/Font").getKey(fontName);
    }
    /// The codes of a drawing in the order of the eye.
    std::vector<unsigned> codes(const std::string& name = "/A0") {
        std::vector<unsigned> result;
        const QString text = QString::fromStdString(content(name));
        for (qsizetype start = text.indexOf(QLatin1String("[<")); start >= 0;
             start = text.indexOf(QLatin1String("[<"), start + 1)) {
            const qsizetype end = text.indexOf(QLatin1String("] TJ"), start);
            for (const QString& part : text.mid(start, end - start).split(QLatin1Char('<')).mid(1)) {
                const QString digits = part.section(QLatin1Char('>'), 0, 0);
                for (qsizetype i = 0; i + 4 <= digits.size(); i += 4)
                    result.push_back(digits.mid(i, 4).toUInt(nullptr, 16));
            }
        }
        return result;
    }
    /// What is copied of a drawing that is in one of the program's fonts.
    QString copied(const std::string& fontName, const std::string& name = "/A0") {
        std::map<unsigned, QString> meanings;
        const std::string map = text(font(name, fontName).getKey("/ToUnicode").getStreamData());
        for (const QString& line : QString::fromStdString(map).split(QLatin1Char('\n'))) {
            const QStringList parts = line.split(QLatin1Char('<'));
            if (parts.size() != 3 || line.contains(QLatin1String("FFFF")))
                continue;
            for (qsizetype i = 0; i + 4 < parts[2].size(); i += 4)
                meanings[parts[1].left(4).toUInt(nullptr, 16)] +=
                    QChar(parts[2].mid(i, 4).toUShort(nullptr, 16));
        }
        QString result;
        for (const unsigned code : codes(name))
            result += meanings[code];
        return result;
    }
    Output& output() { return m_output; }

private:
    Output m_output;
};

QString reversed(QString text) {
    std::reverse(text.begin(), text.end());
    return text;
}

/// Whether the only field of a form that asks for new appearances keeps the one that it brings.
bool keepsOwn(const QString& value, const std::string& content, const std::string& font,
              const std::string& entries = {}) {
    PdfBuilder source = form(field(value, "/AP << /N 1001 0 R >> " + entries), "/NeedAppearances true");
    source.stream("/Subtype /Form /BBox [0 0 9 9] /Resources << /Font << /F 1002 0 R >> >>", content)
        .object(font)
        .stream("",
                "1 beginbfchar <01> <0141> endbfchar 1 beginbfrange <02> <04> <00F3> endbfrange "
                "1 beginbfrange <0041> <0042> [<0416> <0417>] endbfrange");
    return SavedText(source).content() == content;
}

}  // namespace

TEST(FieldTextTest, WritesLettersThatTheFontDoesNotHaveWithOneOfItsOwn) {
    const QString polish = QStringLiteral("Łódź żółta");
    const QString others = QStringLiteral("Αθήνα Йошкар-Ола");
    SavedText saved(form(field(polish) + field(others) + field(QStringLiteral("Plain €"))));
    EXPECT_EQ(saved.copied("/Roboto-Regular", "/A0"), polish);
    EXPECT_EQ(saved.copied("/Roboto-Regular", "/A1"), others);
    EXPECT_THAT(saved.content("/A2"), HasSubstr("(Plain \\200) Tj")) << "its own font has all letters";

    QPDFObjectHandle font = saved.font("/A0", "/Roboto-Regular");
    EXPECT_EQ(font.getObjGen(), saved.font("/A1", "/Roboto-Regular").getObjGen()) << "one for all";
    QPDFObjectHandle descendant = font.getKey("/DescendantFonts").getArrayItem(0);
    const std::string outlines =
        text(descendant.getKey("/FontDescriptor").getKey("/FontFile2").getStreamData());
    EXPECT_TRUE(outlines.starts_with(std::string("\0\1\0\0", 4)));
    EXPECT_LT(outlines.size(), 20'000U) << "only the glyphs that are shown";
    const std::string glyphs = text(descendant.getKey("/CIDToGIDMap").getStreamData());
    QPDFObjectHandle widths = descendant.getKey("/W").getArrayItem(1);
    EXPECT_EQ(glyphs.size(), 2U * static_cast<size_t>(widths.getArrayNItems()));
    for (const unsigned code : saved.codes("/A1")) {
        EXPECT_NE(glyphs.substr(size_t{2} * code, 2), std::string(2, '\0')) << code << " is an empty box";
        EXPECT_GT(widths.getArrayItem(static_cast<int>(code)).getIntValue(), 100) << code;
    }
}

TEST(FieldTextTest, WritesAnEmptyBoxAndNoOtherLetterForOneThatNoFontHas) {
    for (const QString& value :
         {QStringLiteral("漢字"), QStringLiteral("ไทย"), QStringLiteral("हिन्दी"), QStringLiteral("한국어")}) {
        SavedText saved(form(field(value)));
        QPDFObjectHandle font = saved.font("/A0", "/Roboto-Regular");
        const std::string glyphs =
            text(font.getKey("/DescendantFonts").getArrayItem(0).getKey("/CIDToGIDMap").getStreamData());
        EXPECT_EQ(saved.copied("/Roboto-Regular"), value) << "what is copied is the value";
        for (const unsigned code : saved.codes())
            EXPECT_EQ(glyphs.substr(size_t{2} * code, 2), std::string(2, '\0')) << value.toStdString();
    }
}

TEST(FieldTextTest, WritesBoldLettersForABoldFont) {
    const QString polish = QStringLiteral("Łódź");
    const auto drawn = [&](const std::string& font, const QString& value) {
        PdfBuilder source = form(field(value, "/DA (/B 10 Tf)"));
        source.catalog("/AcroForm << /DR << /Font << /B 1001 0 R >> >> >>").object(font);
        return SavedText(source).content();
    };
    EXPECT_THAT(drawn("<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica-Bold >>", polish),
                HasSubstr("/Roboto-Bold"));
    EXPECT_THAT(
        drawn("<< /Type /Font /Subtype /TrueType /BaseFont /F1 /FontDescriptor << /Flags 262176 >> >>",
              polish),
        HasSubstr("/Roboto-Bold"));
    EXPECT_THAT(drawn("<< /Type /Font /Subtype /Type1 /BaseFont /Times-Bold >>", QStringLiteral("سلام")),
                HasSubstr("/DejaVuSans-Bold"));
    EXPECT_THAT(drawn("<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica >>", polish),
                HasSubstr("/Roboto-Regular"));
}

TEST(FieldTextTest, WritesArabicJoinedAndFromRightToLeft) {
    const QString word = QStringLiteral("ببب");
    SavedText saved(form(field(word) + field(QStringLiteral("שלום 12 abc"))));
    EXPECT_EQ(saved.copied("/DejaVuSans", "/A0"), word);
    const std::vector<unsigned> codes = saved.codes("/A0");
    ASSERT_EQ(codes.size(), 3U);
    EXPECT_EQ(std::set<unsigned>(codes.begin(), codes.end()).size(), 3U) << "first, middle and last form";
    EXPECT_EQ(saved.copied("/DejaVuSans", "/A1"),
              QStringLiteral("abc 12 ") + reversed(QStringLiteral("שלום")));
}

TEST(FieldTextTest, PlacesTextByTheWidthsOfTheStandardFonts) {
    const auto start = [](const std::string& font) {
        PdfBuilder source = form(field(QStringLiteral("Wi"), "/Q 2 /DR << /Font << /H 1001 0 R >> >>"));
        source.object("<< /Type /Font /Subtype /Type1 /Encoding /WinAnsiEncoding " + font + " >>");
        const QString content = QString::fromStdString(SavedText(source).content());
        return content.section(QLatin1String("1 0 0 1 "), 1).section(QLatin1Char(' '), 0, 0).toDouble();
    };
    EXPECT_NEAR(start("/BaseFont /Helvetica"), 198 - 9.44 - 2.22, 0.001);
    EXPECT_NEAR(start("/BaseFont /Times-BoldItalic"), 198 - 8.89 - 2.78, 0.001);
    EXPECT_NEAR(start("/BaseFont /Courier-Bold"), 198 - 12, 0.001);
    EXPECT_NEAR(start("/BaseFont /Helvetica /FirstChar 105 /Widths [500]"), 198 - 9.44 - 5, 0.001);
}

TEST(FieldTextTest, WritesOnlyWithGlyphsThatAnEmbeddedFontHas) {
    const auto drawn = [](const QString& value) {
        PdfBuilder source = form(field(value, "/DR << /Font << /H 1001 0 R >> >>"));
        source
            .object(
                "<< /Type /Font /Subtype /Type1 /BaseFont /ABCDEF+Own /Encoding /WinAnsiEncoding "
                "/FirstChar 65 /Widths [600 0 600] /FontDescriptor << /FontFile 1002 0 R >> >>")
            .stream("", "");
        return SavedText(source).content();
    };
    EXPECT_THAT(drawn(QStringLiteral("ACA")), HasSubstr("(ACA) Tj"));
    for (const QString& value : {QStringLiteral("ABA"), QStringLiteral("ACD")})
        EXPECT_THAT(drawn(value), HasSubstr("/Roboto-Regular"));
}

TEST(FieldTextTest, KeepsAnAppearanceThatShowsTheValueInWhateverEncoding) {
    const QString value = QStringLiteral("Łód");
    const std::string simple = "/Type /Font /Subtype /Type1 /BaseFont /Own ";
    EXPECT_TRUE(keepsOwn(value, "/F 9 Tf (\\1\\2) Tj (d) Tj", "<< " + simple + "/ToUnicode 1003 0 R >>"));
    EXPECT_TRUE(keepsOwn(value, "/F 9 Tf [(\\1) 5 (\\2d)] TJ",
                         "<< " + simple + "/Encoding << /Differences [1 /Lslash /oacute] >> >>"));
    EXPECT_TRUE(keepsOwn(value, "/F 9 Tf (\\1\\2d) Tj",
                         "<< " + simple + "/Encoding << /Differences [1 /uni0141 /oacute] >> >>"));
    const std::string composite = "<< /Type /Font /Subtype /Type0 ";
    EXPECT_TRUE(keepsOwn(QStringLiteral("ЖЗ"), "/F 9 Tf <00410042> Tj",
                         composite + "/Encoding /Identity-H /ToUnicode 1003 0 R >>"));
    EXPECT_TRUE(keepsOwn(value, "/F 9 Tf <014100F30064> Tj", composite + "/Encoding /UniGB-UTF16-H >>"));
    EXPECT_TRUE(keepsOwn(QStringLiteral("שלום"),
                         "/F 9 Tf " + hexadecimal(reversed(QStringLiteral("שלום"))) + " Tj",
                         composite + "/Encoding /UniGB-UTF16-H >>"))
        << "in the order of the eye";
}

TEST(FieldTextTest, KeepsAnAppearanceThatCannotBeReadOrNotBeReplaced) {
    const QString value = QStringLiteral("new");
    const std::string composite = "<< /Type /Font /Subtype /Type0 /Encoding /Identity-H >>";
    EXPECT_TRUE(keepsOwn(value, "/F 9 Tf <0041> Tj", composite)) << "no meaning of its codes";
    EXPECT_TRUE(keepsOwn(value, "1 2 3 4 5 6 c f", "null")) << "letters may be drawn";
    EXPECT_TRUE(keepsOwn(value, "(old) Tj " + std::string(600'000, ' '), "null")) << "too much for a look";
    EXPECT_TRUE(keepsOwn(QStringLiteral("漢"), "(old) Tj", "null")) << "a letter that cannot be written";
    EXPECT_TRUE(keepsOwn(QStringLiteral("1234.5"), "(1.234,50 \\200) Tj", "null", "/AA << /F << >> >>"))
        << "as the form's script says it";
}

TEST(FieldTextTest, ReplacesAnAppearanceThatPlainlyShowsAnotherText) {
    const QString value = QStringLiteral("Łód");
    EXPECT_FALSE(keepsOwn(value, "/F 9 Tf (Lod) Tj", "null"));
    EXPECT_FALSE(keepsOwn(value, "0 0 9 9 re S", "null")) << "nothing";
    EXPECT_FALSE(keepsOwn(value, "3 Tr (" + std::string("Lod) Tj"), "null")) << "nothing that is seen";
    EXPECT_FALSE(keepsOwn(value, "q /F 9 Tf Q (\\1\\2d) Tj",
                          "<< /Type /Font /Subtype /Type1 /BaseFont /Own /ToUnicode 1003 0 R >>"))
        << "in a font that does not hold any more";
    EXPECT_FALSE(keepsOwn(QStringLiteral("5"), "(4,00) Tj", "null", "/AA << /F << >> >>"));
}

TEST(FieldTextTest, BoundsWhatOddFilesAskFor) {
    const std::string comb = "/Q 99999999999 /Ff 16777216 /MaxLen 2000000000";
    EXPECT_THAT(SavedText(form(field(QStringLiteral("x"), comb))).content(), HasSubstr("(x) Tj"));
    EXPECT_THAT(SavedText(form(field(QStringLiteral("x"), "/BS << /W 500 >>"))).content(),
                HasSubstr("(x) Tj"))
        << "a border without a colour takes no room from the text";
    const auto mark = [](const char* caption) {
        return SavedText(form(std::string("<< /Subtype /Widget /FT /Btn /Ff 32768 /AS /On /Rect [0 0 9 9] "
                                          "/F 4294967300 /MK << /CA ") +
                              caption + " >> >>"))
            .content();
    };
    EXPECT_THAT(mark("<FEFF2713>"), HasSubstr("(3) Tj")) << "a check mark";
    EXPECT_THAT(mark("<FEFF6F22>"), HasSubstr("(l) Tj"));

    std::string quads;
    for (int i = 0; i < 1000; ++i)
        quads += "0 7 1900 7 0 0 1900 0 ";
    SavedText squiggly(form("<< /Subtype /Squiggly /Rect [0 0 9 9] /QuadPoints [" + quads + "] >>"));
    EXPECT_LT(squiggly.content().size(), 3'000'000U);

    PdfBuilder repeated;
    repeated.page("/Annots [1000 0 R 1000 0 R]").object(field(QStringLiteral("x")));
    SavedText twice(repeated);
    EXPECT_EQ(twice.output().drawn("/A0").getObjGen(), twice.output().drawn("/A1").getObjGen());
}
