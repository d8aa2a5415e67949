#include "platform/error/Error.h"
#include "platform/pdf/ContentText.h"
#include "platform/pdf/PDFContext.h"
#include "platform/pdf/PageDrawing.h"
#include "platform/pdf/Qpdf.h"
#include "tests/support/GTestQt.h"
#include "tests/support/TestImages.h"
#include "tests/support/TestPdf.h"

using namespace vellmora;
using namespace vellmora::test;

namespace {

/// The bytes of a context's output for the first page of a document, and its page, opened with the PDF
/// library.
class Output {
public:
    explicit Output(QByteArray bytes) : m_bytes(std::move(bytes)) {
        m_pdf.processMemoryFile("output", m_bytes.constData(), static_cast<size_t>(m_bytes.size()));
    }
    QPDFObjectHandle page(size_t index = 0) { return m_pdf.getAllPages().at(index); }
    QPDFObjectHandle root() { return m_pdf.getRoot(); }
    QPDFObjectHandle trailer() { return m_pdf.getTrailer(); }
    QPDFObjectHandle drawn(const std::string& name) {
        return page().getKey("/Resources").getKey("/XObject").getKey(name);
    }

private:
    QByteArray m_bytes;
    QPDF m_pdf;
};

std::string text(const std::shared_ptr<Buffer>& buffer) {
    return {reinterpret_cast<const char*>(buffer->getBuffer()), buffer->getSize()};
}

QByteArray drawFirstPage(const PdfBuilder& source) {
    MemoryConsumer consumer;
    const auto context = PDFContext::create(consumer);
    const auto document = source.document();
    context->beginPage(document->page(0)->bounds(DisplayBox::mediaBox));
    context->drawPage(*document, 0, DisplayBox::mediaBox);
    context->endPage();
    context->close();
    return consumer.bytes();
}

/// Takes a number of bytes and then fails, as a full disk does.
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
    EXPECT_EQ(text(output.drawn("/P").getStreamData()), "q\n1 0 0 rg\nQ\n");
}

TEST(PDFContextTest, KeepsThePagesAttributesAndNothingElseOfTheDocument) {
    PdfBuilder source;
    source
        .page(
            "/Rotate 90 /UserUnit 2 /Group << /S /Transparency >> /MediaBox [10 20 300 400] /CropBox [20 30 "
            "90 90] "
            "/Metadata 1000 0 R /Annots [<< /Subtype /Link /Rect [0 0 9 9] >>] /AA << /O << /S /JavaScript "
            ">> >>")
        .stream("", "metadata")
        .catalog(
            "/Outlines << >> /AcroForm << /Fields [] >> /OpenAction << /S /JavaScript /JS (x) >> /Names << "
            ">> "
            "/OCProperties << /OCGs [] /D << >> >> /Metadata 1000 0 R");
    Output output(drawFirstPage(source));
    QPDFObjectHandle page = output.page();
    EXPECT_EQ(page.getKey("/Rotate").getIntValue(), 90);
    EXPECT_EQ(page.getKey("/UserUnit").getIntValue(), 2);
    EXPECT_TRUE(page.getKey("/Group").isDictionary());
    EXPECT_EQ(page.getKey("/MediaBox").unparse(), "[ 10 20 300 400 ]");
    for (const char* key : {"/CropBox", "/Annots", "/Metadata", "/AA"})
        EXPECT_FALSE(page.hasKey(key)) << key;
    EXPECT_EQ(output.root().getKeys(), (std::set<std::string>{"/OCProperties", "/Pages", "/Type"}));
    EXPECT_FALSE(output.trailer().hasKey("/Info"));
}

TEST(PDFContextTest, PaintsVisibleAnnotationsWithTheirAppearance) {
    const std::string form = "/Subtype /Form /BBox [0 0 10 10] /Matrix [1 0 0 1 0 0]";
    PdfBuilder source;
    source
        .page(
            "/Annots [<< /Subtype /Widget /Rect [100 100 120 140] /AS /On /AP << /N << /On 1000 0 R >> >> >>"
            "<< /Subtype /Stamp /Rect [0 0 10 10] /AP << /N 1001 0 R >> >>"
            "<< /Subtype /Stamp /F 2 /Rect [0 0 10 10] /AP << /N 1002 0 R >> >>]")
        .stream(form, "% field")
        .stream(form, "% stamp")
        .stream(form, "% hidden");
    Output output(drawFirstPage(source));
    const std::string content = text(output.page().getKey("/Contents").getStreamData());
    EXPECT_EQ(content, "q /P Do Q\nq /A0 Do Q\nq 2 0 0 4 100 100 cm /A1 Do Q\n") << "fields come last";
    EXPECT_EQ(text(output.drawn("/A1").getStreamData()), "% field");
}

TEST(PDFContextTest, StoresAPictureOnceAndItsAlphaOnlyWhereItIsNeeded) {
    MemoryConsumer consumer;
    const auto context = PDFContext::create(consumer);
    const auto opaque = context->addPicture(Image(plainImage(4, 2, QColor(255, 0, 0))));
    const auto glassy = context->addPicture(Image(plainImage(4, 2, QColor(255, 0, 0, 100))));
    context->beginPage({0, 0, 100, 100});
    context->drawPicture(opaque, {1, 2, 30, 40});
    context->drawPicture(glassy, {1, 2, 30, 40});
    context->drawPicture(opaque, {50, 2, 30, 40});
    context->endPage();
    context->close();
    Output output(consumer.bytes());
    EXPECT_FALSE(output.drawn("/S0").getDict().hasKey("/SMask"));
    const std::string samples = text(output.drawn("/S1").getStreamData());
    EXPECT_EQ(samples.substr(0, 3), std::string("\xff\0\0", 3)) << "straight alpha: full red, not faded";
    EXPECT_EQ(text(output.drawn("/S1").getDict().getKey("/SMask").getStreamData()),
              std::string(8, char(100)));
    EXPECT_EQ(text(output.page().getKey("/Contents").getStreamData()),
              "q 30 0 0 40 1 2 cm /S0 Do Q\nq 30 0 0 40 1 2 cm /S1 Do Q\nq 30 0 0 40 50 2 cm /S0 Do Q\n");
}

TEST(PDFContextTest, PassesTheConsumersErrorOn) {
    FailingConsumer consumer;
    const auto context = PDFContext::create(consumer);
    context->beginPage({0, 0, 100, 100});
    context->endPage();
    EXPECT_THROW(context->close(), Error);
}

TEST(PageDrawingTest, ShowsTheCropBoxOfTheTurnedPage) {
    const auto document = PdfBuilder().page("/Rotate 90 /CropBox [10 20 110 220]").document();
    Output output(makePageDrawing(*document, 0));
    EXPECT_EQ(output.page().getKey("/MediaBox").unparse(), "[ 10 20 110 220 ]");
    EXPECT_EQ(output.page().getKey("/Rotate").getIntValue(), 90);
    EXPECT_TRUE(makePageDrawing(*document, 1).isEmpty());
}
