#include "base/Error.h"
#include "pdf/PDFDocument.h"
#include "tests/support/GTestQt.h"
#include "tests/support/RewrittenPdf.h"
#include "tests/support/TestDocuments.h"
#include "tests/support/TestPdf.h"

#include <unistd.h>

#include <QTemporaryDir>

using namespace vellmora;
using namespace vellmora::test;

namespace {

Rect mediaBox(const PDFDocument& document, qsizetype page = 0) {
    return document.page(page)->bounds(DisplayBox::mediaBox);
}

QByteArray encrypted(const QByteArray& bytes, const char* password) {
    return rewritten(bytes, [&](QPDFWriter& writer) {
        writer.setR6EncryptionParameters(password, "owner", true, true, true, true, true, true, qpdf_r3p_full,
                                         true);
    });
}

Rect cropBox(const PDFDocument& document) {
    return document.page(0)->bounds(DisplayBox::cropBox);
}

}  // namespace

TEST(PDFDocumentTest, AnswersPagesWithinItsCountOnly) {
    const auto document = pages(3).document();
    ASSERT_TRUE(document);
    EXPECT_EQ(document->pageCount(), 3);
    EXPECT_TRUE(document->page(2));
    EXPECT_FALSE(document->page(-1));
    EXPECT_FALSE(document->page(3));
}

TEST(PDFDocumentTest, SaysWhyAFileIsRefused) {
    const QTemporaryDir folder;
    const auto reason = [&](const QString& path) {
        try {
            openDocument(QUrl::fromLocalFile(path));
            return QStringLiteral("none");
        } catch (const Error& error) {
            return error.reason();
        }
    };
    const auto reasonFor = [&](const QByteArray& bytes) {
        const QString path = folder.filePath(QStringLiteral("a.pdf"));
        writeFile(path, bytes);
        return reason(path);
    };
    EXPECT_EQ(reasonFor(pages(1).bytes()), QStringLiteral("none"));
    EXPECT_EQ(reasonFor({}), QStringLiteral("Die Datei ist leer."));
    EXPECT_EQ(reasonFor("just a text\n"), QStringLiteral("Die Datei ist kein PDF."));
    EXPECT_EQ(reasonFor("%PDF-1.7\n" + QByteArray(5000, 'x')),
              QStringLiteral("Die Datei ist zu stark beschädigt."));
    EXPECT_EQ(reasonFor(encrypted(pages(1).bytes(), "Kennwort")),
              QStringLiteral("Die Datei ist mit einem Kennwort geschützt."));
    EXPECT_EQ(reasonFor(encrypted(pages(1).bytes(), "")), QStringLiteral("none"));
    EXPECT_EQ(reason(folder.filePath(QStringLiteral("fehlt.pdf"))),
              QStringLiteral("Die Datei oder der Ordner ist nicht vorhanden."));
    EXPECT_EQ(reason(folder.path()), QStringLiteral("Es handelt sich um einen Ordner."));
}

TEST(PDFDocumentTest, IsASnapshotOfTheFile) {
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("a.pdf"));
    writeFile(path, pages(2).bytes());
    const auto document = openDocument(QUrl::fromLocalFile(path));
    ASSERT_EQ(::truncate(qPrintable(path), 10), 0);
    EXPECT_EQ(document->pageCount(), 2);
    EXPECT_EQ(mediaBox(*document, 1), (Rect{0, 0, 595, 842}));
}

TEST(PDFDocumentTest, ReadsBoxesInAnyOrderAndRepairsInvalidOnes) {
    const auto boxes = [](const std::string& entries) { return PdfBuilder().page(entries).document(); };
    EXPECT_EQ(mediaBox(*boxes("/MediaBox [600 900 100 200]")), (Rect{100, 200, 500, 700}));
    EXPECT_EQ(mediaBox(*boxes("/MediaBox [0 0 0 100]")), (Rect{0, 0, 612, 792}));
    EXPECT_EQ(mediaBox(*boxes("/MediaBox [0 0 (a) 100]")), (Rect{0, 0, 612, 792}));
    EXPECT_EQ(cropBox(*boxes("/CropBox [-10 -10 300 900]")), (Rect{0, 0, 300, 842}));
    EXPECT_EQ(cropBox(*boxes("/CropBox [700 900 800 1000]")), (Rect{0, 0, 595, 842}));
}

TEST(PDFDocumentTest, ShowsTurnedPagesUpright) {
    const auto document =
        PdfBuilder().page("/Rotate -90 /MediaBox [0 0 200 100] /CropBox [0 0 50 100]").document();
    EXPECT_EQ(mediaBox(*document), (Rect{0, 0, 100, 200}));
    EXPECT_EQ(cropBox(*document), (Rect{0, 0, 100, 50}))
        << "the left part of the page is at the foot when turned";
}

TEST(PDFDocumentTest, TakesAnyQuarterTurnForARotationAndNothingElse) {
    const auto isTurned = [](const char* rotation) {
        const auto document = PdfBuilder().page(std::string("/Rotate ") + rotation).document();
        return mediaBox(*document).width > mediaBox(*document).height;
    };
    for (const char* rotation : {"90", "450", "-90", "270.0", "-810"})
        EXPECT_TRUE(isTurned(rotation)) << rotation;
    for (const char* rotation : {"-360", "45", "90.5", "99999999999999999990.0", "(90)"})
        EXPECT_FALSE(isTurned(rotation)) << rotation;
}

TEST(PDFDocumentTest, SurvivesLoopsRepeatsAndOddKidsInThePageTree) {
    QByteArray bytes = pages(1).object("<< /Type /Pages /Kids [ 3 0 R 2 0 R ] >>").bytes();
    bytes.replace("/Kids [ 3 0 R ]", "/Kids [ 2 0 R 3 0 R (x) 3 0 R 99 0 R 1000 0 R 1000 0 R ]");
    const auto document = documentOf(bytes);
    ASSERT_TRUE(document);
    EXPECT_EQ(document->pageCount(), 4);
}

TEST(PDFDocumentTest, ShowsALostPageAsABlankOneButNoDeletedPage) {
    const auto pageCount = [](const char* count) {
        QByteArray bytes = pages(2).bytes();
        bytes.replace("3 0 R 5 0 R ] /Count 2", QByteArray("3 0 R 99 0 R 5 0 R ] /Count ") + count);
        return documentOf(bytes)->pageCount();
    };
    EXPECT_EQ(pageCount("3"), 3);
    EXPECT_EQ(pageCount("2"), 2);
}

TEST(PDFDocumentTest, DoesNotGrowWithoutBoundWhereNodesAreRepeated) {
    constexpr int levels = 40;
    PdfBuilder builder = pages(1);
    for (int i = 1; i <= levels; ++i) {
        const std::string kid = std::to_string(i < levels ? PdfBuilder::firstExtraObject + i : 3) + " 0 R ";
        builder.object(std::string("<< /Type /Pages /Kids [ ").append(kid).append(kid).append("] >>"));
    }
    QByteArray bytes = builder.bytes();
    bytes.replace("/Pages 2 0 R", "/Pages 1000 0 R");
    EXPECT_LT(documentOf(bytes)->pageCount(), 100000);
}

TEST(PDFDocumentTest, EndsWhereAnArrayOfKidsLeadsToItself) {
    QByteArray bytes = pages(1).object("[ 3 0 R << /Type /Pages /Kids 1000 0 R >> 3 0 R ]").bytes();
    bytes.replace("/Kids [ 3 0 R ]", "/Kids 1000 0 R");
    EXPECT_EQ(documentOf(bytes)->pageCount(), 2);
}

TEST(PDFDocumentTest, BoundsPagesThatAreNamedByRepeatedArrays) {
    std::string leaves;
    std::string nodes;
    for (int i = 0; i < 3000; ++i) {
        leaves += "3 0 R ";
        nodes += "<< /Type /Pages /Kids 1000 0 R >> ";
    }
    QByteArray bytes = pages(1).object("[ " + leaves + "]").bytes();
    bytes.replace("/Kids [ 3 0 R ]", QByteArray::fromStdString("/Kids [ " + nodes + "]"));
    const qsizetype count = documentOf(bytes)->pageCount();
    EXPECT_GE(count, 3000) << "a page may stand in the tree as often as the file names it";
    EXPECT_LT(count, 20000);
}

TEST(PDFDocumentTest, FindsThePagesWhereTheTreeIsLost) {
    QByteArray bytes =
        PdfBuilder().page("/Parent 1000 0 R").page().object("<< /Rotate 90 /Parent 1000 0 R >>").bytes();
    bytes.replace("/Pages 2 0 R", "/Pages 9 9 R").replace("/Type /Pages", "/Type /Trees");
    bytes.replace("/Parent 2 0 R /Parent 1000 0 R", "              /Parent 1000 0 R");
    const auto document = documentOf(bytes);
    ASSERT_TRUE(document);
    ASSERT_EQ(document->pageCount(), 2);
    EXPECT_EQ(mediaBox(*document), (Rect{0, 0, 842, 595})) << "attributes of lost nodes count, in a loop too";
}

TEST(PDFDocumentTest, FindsThePagesWhereTheCatalogTakesItselfForTheTree) {
    QByteArray bytes = pages(2).bytes();
    bytes.replace("/Pages 2 0 R", "/Pages 1 0 R");
    EXPECT_EQ(documentOf(bytes)->pageCount(), 2);
}
