#include "engine/objects/Qpdf.h"
#include "export/PDFExportError.h"
#include "export/PDFExporter.h"
#include "tests/support/GTestQt.h"
#include "tests/support/TestDocuments.h"
#include "tests/support/TestImages.h"
#include "tests/support/TestPdf.h"

#include <set>

#include <QDir>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

using namespace vellmora;
using namespace vellmora::test;

namespace {

class PDFExporterTest : public testing::Test {
protected:
    QString path(const char* name) const { return m_folder.filePath(QString::fromUtf8(name)); }
    QUrl url(const char* name) const { return QUrl::fromLocalFile(path(name)); }
    QStringList entries() const {
        return QDir(m_folder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }

    static StampItem stamp(const QByteArray& png, const Rect& rect) {
        StampItem item;
        item.imageData = png;
        item.rect = rect;
        return item;
    }

    /// The page as an independent renderer shows it, one pixel for each point.
    QImage render(const QString& pdf, int page = 1) const {
        QProcess renderer;
        const QString number = QString::number(page);
        renderer.start(
            QStringLiteral("pdftoppm"),
            {QStringLiteral("-r"), QStringLiteral("72"), QStringLiteral("-png"), QStringLiteral("-f"), number,
             QStringLiteral("-l"), number, QStringLiteral("-singlefile"), pdf, path("rendered")});
        renderer.waitForFinished();
        return QImage(path("rendered.png"));
    }

    QTemporaryDir m_folder;
};

#define REQUIRE_RENDERER()                                                    \
    if (QStandardPaths::findExecutable(QStringLiteral("pdftoppm")).isEmpty()) \
    GTEST_SKIP() << "pdftoppm is not installed"

/// The file's page count; fails the test where the file is not sound.
int pageCount(const QString& path) {
    QPDF pdf;
    pdf.processFile(qPrintable(path));
    EXPECT_FALSE(pdf.anyWarnings());
    return static_cast<int>(pdf.getAllPages().size());
}

}  // namespace

TEST_F(PDFExporterTest, ErrorsCarryTheirGermanTexts) {
    using Case = PDFExportError::Case;
    EXPECT_EQ(PDFExportError(Case::couldNotCreateConsumer).localizedDescription(),
              QStringLiteral("PDF-Datei konnte nicht erstellt werden."));
    EXPECT_EQ(PDFExportError(Case::couldNotCreateContext).localizedDescription(),
              QStringLiteral("PDF-Kontext konnte nicht erstellt werden."));
    EXPECT_FALSE(PDFExportError(Case::couldNotCreateConsumer) == PDFExportError(Case::couldNotCreateContext));
}

TEST_F(PDFExporterTest, WritesEveryPageAndIgnoresStampsOfPagesThatAreNotThere) {
    const QByteArray png = plainPng(4, 4, Qt::red);
    const StampsByPage stamps{{-1, {stamp(png, {})}}, {3, {stamp(png, {})}}};
    PDFExporter::save(*pages(3).document(), stamps, url("out.pdf"));
    EXPECT_EQ(pageCount(path("out.pdf")), 3);
    EXPECT_FALSE(readFile(path("out.pdf")).contains("/Image"));
}

TEST_F(PDFExporterTest, ADocumentWithoutPagesYieldsAFileWithoutPages) {
    PDFExporter::save(*PdfBuilder().document(), {}, url("out.pdf"));
    EXPECT_EQ(pageCount(path("out.pdf")), 0);
}

TEST_F(PDFExporterTest, DrawsStampsOverThePageAndLaterOnesOnTop) {
    REQUIRE_RENDERER();
    PdfBuilder source;
    source.page("/MediaBox [100 200 300 500]", filledRect("0 1 0", "100 200 200 300"));
    const StampsByPage stamps{
        {0,
         {stamp(plainPng(2, 2, Qt::red), {120, 220, 60, 40}), stamp("no picture", {0, 0, 500, 500}),
          stamp(plainPng(2, 2, Qt::blue), {150, 230, 100, 20})}}};
    PDFExporter::save(*source.document(), stamps, url("out.pdf"));
    const QImage page = render(path("out.pdf"));
    ASSERT_EQ(page.size(), QSize(200, 300));
    const auto at = [&](int x, int y) { return page.pixelColor(x - 100, 300 - (y - 200) - 1); };
    EXPECT_TRUE(isClose(at(110, 210), Qt::green));
    EXPECT_TRUE(isClose(at(121, 221), Qt::red));
    EXPECT_TRUE(isClose(at(178, 258), Qt::red));
    EXPECT_TRUE(isClose(at(182, 258), Qt::green));
    EXPECT_TRUE(isClose(at(160, 240), Qt::blue)) << "the later stamp covers the earlier one";
    EXPECT_TRUE(isClose(at(249, 231), Qt::blue)) << "stretched to its rectangle";
    EXPECT_TRUE(isClose(at(252, 231), Qt::green));
}

TEST_F(PDFExporterTest, ATurnedPageKeepsItsRotationAndItsStampIsUpright) {
    REQUIRE_RENDERER();
    QImage greenOverRed = plainImage(10, 20, Qt::red);
    for (int x = 0; x < 10; ++x) {
        for (int y = 0; y < 10; ++y)
            greenOverRed.setPixelColor(x, y, Qt::green);
    }
    for (const int rotation : {0, 90, 180, 270}) {
        PdfBuilder source;
        source.page("/MediaBox [50 60 250 460] /Rotate " + std::to_string(rotation));
        const auto document = source.document();
        const Rect box = document->page(0)->bounds(DisplayBox::mediaBox);
        const Rect rect{box.x + 20, box.y + 30, 40, 80};
        PDFExporter::save(*document, {{0, {stamp(pngOf(greenOverRed), rect)}}}, url("out.pdf"));
        const QImage page = render(path("out.pdf"));
        ASSERT_EQ(page.size(), QSize(int(box.width), int(box.height))) << rotation;
        const auto at = [&](int x, int y) { return page.pixelColor(x, page.height() - y - 1); };
        EXPECT_TRUE(isClose(at(40, 100), Qt::green)) << rotation;
        EXPECT_TRUE(isClose(at(40, 40), Qt::red)) << rotation;
        EXPECT_TRUE(isClose(at(22, 32), Qt::red)) << rotation;
        EXPECT_TRUE(isClose(at(17, 32), Qt::white)) << rotation;
        QPDF pdf;
        pdf.processFile(qPrintable(path("out.pdf")));
        QPDFObjectHandle written = pdf.getAllPages().at(0);
        EXPECT_EQ(written.getKey("/MediaBox").unparse(), "[ 50 60 250 460 ]");
    }
}

TEST_F(PDFExporterTest, EmbedsEachDistinctPictureOnce) {
    const QByteArray red = plainPng(300, 200, Qt::red);
    QByteArray equalBytes = red;
    equalBytes.detach();
    StampsByPage stamps;
    for (int page = 0; page < 1000; ++page)
        stamps.insert(page, {stamp(page % 2 ? red : equalBytes, {double(page), 0, 10, 10}),
                             stamp(plainPng(30, 20, Qt::blue), {100, 100, 10, 10})});
    PDFExporter::save(*pages(1000).document(), stamps, url("out.pdf"));
    QPDF pdf;
    pdf.processFile(qPrintable(path("out.pdf")));
    int pictures = 0;
    for (QPDFObjectHandle object : pdf.getAllObjects())
        pictures += object.isStreamOfType("/XObject", "/Image") ? 1 : 0;
    EXPECT_EQ(pictures, 2);
    EXPECT_LT(readFile(path("out.pdf")).size(), pages(1000).bytes().size() + qsizetype{1000} * 300 + 2000);
}

TEST_F(PDFExporterTest, AFailedSaveLeavesTheTargetAndNoLitter) {
    const auto document = pages(1).document();
    try {
        PDFExporter::save(*document, {}, url("kein/Ordner.pdf"));
        FAIL() << "no failure";
    } catch (const PDFExportError& error) {
        EXPECT_EQ(error.which(), PDFExportError::Case::couldNotCreateConsumer);
        EXPECT_EQ(
            error.localizedDescription(),
            QStringLiteral("PDF-Datei konnte nicht erstellt werden. Die Datei oder der Ordner ist nicht "
                           "vorhanden."));
    }
    QDir(m_folder.path()).mkdir(QStringLiteral("ordner.pdf"));
    EXPECT_THROW(PDFExporter::save(*document, {}, url("ordner.pdf")), PDFExportError);
    EXPECT_EQ(entries(), QStringList{QStringLiteral("ordner.pdf")});
}

TEST_F(PDFExporterTest, ReplacesTheOriginalAlsoWhereItIsTheOpenSource) {
    const QByteArray source = pages(2).bytes();
    writeFile(path("Vertrag.pdf"), source);
    const auto document = openDocument(url("Vertrag.pdf"));
    const StampsByPage stamps{{0, {stamp(plainPng(4, 4, Qt::red), {10, 10, 50, 50})}}};
    FileVersions versions(document->content());
    for (int i = 0; i < 2; ++i) {
        PDFExporter::replaceOriginal(*document, stamps, url("Vertrag.pdf"), versions);
        EXPECT_EQ(pageCount(path("Vertrag.pdf")), 2);
        EXPECT_EQ(entries(), QStringList{QStringLiteral("Vertrag.pdf")});
    }
    EXPECT_NE(readFile(path("Vertrag.pdf")), source);
}

TEST_F(PDFExporterTest, AFailedReplacementPassesTheFileErrorOnAndKeepsTheOriginal) {
    const auto document = pages(1).document();
    try {
        PDFExporter::replaceOriginal(*document, {}, url("weg/Vertrag.pdf"));
        FAIL() << "no failure";
    } catch (const Error& error) {
        EXPECT_EQ(error.domain(), Error::posixDomain);
    }
    EXPECT_TRUE(entries().isEmpty());
}
