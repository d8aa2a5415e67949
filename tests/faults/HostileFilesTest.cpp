#include "app/ContentWindow.h"
#include "base/Error.h"
#include "base/FileDescriptor.h"
#include "engine/objects/Qpdf.h"
#include "export/PDFExporter.h"
#include "pdf/PagePdf.h"
#include "preview/ProcessRenderer.h"
#include "tests/editor/EditorTestSupport.h"
#include "tests/faults/Wholeness.h"
#include "tests/support/EventLoop.h"
#include "tests/support/GTestQt.h"
#include "tests/support/LongRun.h"
#include "tests/support/RewrittenPdf.h"
#include "tests/support/TestDocuments.h"
#include "tests/support/TestPdf.h"
#include "tests/support/TestWorkspace.h"

#include <array>
#include <sys/inotify.h>
#include <unistd.h>

#include <QDir>
#include <QRegularExpression>
#include <QTest>

using namespace vellmora;
using namespace vellmora::test;

namespace {

class HostileFilesTest : public testing::Test {
protected:
    QString path(const char* name) const { return workspace.path(QString::fromUtf8(name)); }
    QUrl url(const char* name) const { return QUrl::fromLocalFile(path(name)); }

    /// Nothing where the document cannot be opened.
    template <typename Opening>
    static std::shared_ptr<const PDFDocument> open(Opening opening) {
        try {
            return opening();
        } catch (const Error&) {
            return nullptr;
        }
    }

    /// Opens the document, draws its first pages and saves it with a stamp. What is written is whole, or the
    /// save fails with an error. False where it does not open.
    bool opensAndSaves(const QByteArray& bytes) {
        const auto document = open([&] { return documentOf(bytes); });
        if (!document)
            return false;
        for (qsizetype page = 0; page < std::min<qsizetype>(document->pageCount(), 4); ++page)
            makePagePdf(*document, page);
        const StampsByPage stamps{{0, {stampAt({10, 10, 60, 30})}}};
        try {
            PDFExporter::save(*document, stamps, url("Kopie.pdf"));
        } catch (const Error&) {
            ++failedSaves;
            return true;
        }
        EXPECT_TRUE(isWholePdf(readFile(path("Kopie.pdf")), static_cast<int>(document->pageCount())));
        return true;
    }

    /// Has one of each thing that points to another object.
    static QByteArray entangledDocument() {
        return PdfBuilder()
            .page("/Contents [1000 0 R 1001 0 R] /Resources 1002 0 R /Annots [1003 0 R 1004 0 R]")
            .page("/Resources 1002 0 R /Group << /S /Transparency /CS 1008 0 R >>",
                  "/F Do /P scn 9 9 9 9 re f")
            .stream("", "q /F Do Q")
            .stream("/DecodeParms 1005 0 R", "BT /T 9 Tf (a) Tj ET")
            .object(
                "<< /XObject << /F 1006 0 R >> /Pattern << /P 1007 0 R >> /Font << /T 1010 0 R >>"
                " /ExtGState << /G << /SMask << /S /Alpha /G 1006 0 R >> >> >> >>")
            .object(
                "<< /Type /Annot /Subtype /Stamp /Rect [9 9 99 99] /F 4 /P 3 0 R /AP << /N 1006 0 R >> >>")
            .object(
                "<< /Type /Annot /Subtype /Widget /FT /Tx /T (a) /V (b) /DA (/T 9 Tf) /Rect [9 9 99 30]"
                " /Parent 1009 0 R /Kids [1003 0 R] >>")
            .object("<< /Columns 1005 0 R >>")
            .stream("/Type /XObject /Subtype /Form /BBox [0 0 9 9] /Resources 1002 0 R /OC 1011 0 R", "/F Do")
            .stream(
                "/PatternType 1 /PaintType 1 /TilingType 1 /BBox [0 0 9 9] /XStep 9 /YStep 9"
                " /Resources 1002 0 R",
                "/P scn")
            .object("[/ICCBased 1000 0 R]")
            .object("<< /T (p) /Kids [1004 0 R] /Parent 1009 0 R >>")
            .object(
                "<< /Type /Font /Subtype /Type3 /FontBBox [0 0 9 9] /FontMatrix [1 0 0 1 0 0] /FirstChar 97"
                " /LastChar 97 /Widths [9] /Encoding << /Differences [97 /a] >> /CharProcs << /a 1000 0 R >>"
                " /Resources 1002 0 R >>")
            .object("<< /Type /OCMD /OCGs [1011 0 R] /VE [/And 1011 0 R] >>")
            .catalog(
                "/AcroForm << /Fields [1009 0 R 1004 0 R] /DR 1002 0 R /NeedAppearances true >>"
                " /OCProperties << /OCGs [1011 0 R] /D << /Order [1011 0 R] >> >>")
            .bytes();
    }
    /// Written anew with all of it in sight.
    static QByteArray plain(const QByteArray& bytes) {
        return rewritten(bytes, [](QPDFWriter& writer) {
            writer.setObjectStreamMode(qpdf_o_disable);
            writer.setStreamDataMode(qpdf_s_uncompress);
        });
    }

    TestWorkspace workspace;
    int failedSaves = 0;
};

/// Tells whether anybody opened something in a folder.
class FolderWatch {
public:
    explicit FolderWatch(const QString& folder) : m_fd(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
        EXPECT_GE(::inotify_add_watch(m_fd.get(), QFile::encodeName(folder).constData(), IN_OPEN | IN_CREATE),
                  0);
    }
    bool hasSeenAnything() const {
        std::array<char, 4096> events;
        return ::read(m_fd.get(), events.data(), events.size()) > 0;
    }

private:
    FileDescriptor m_fd;
};

}  // namespace

TEST_F(HostileFilesTest, DocumentsCutOffAnywhere) {
    const int step = isLongRun() ? 1 : 19;
    for (const QByteArray& whole : {entangledDocument(), rewritten(entangledDocument())}) {
        int tried = 0;
        int opened = 0;
        for (qsizetype length = 0; length < whole.size() && !HasFailure(); length += step) {
            SCOPED_TRACE("cut off after " + std::to_string(length));
            opened += opensAndSaves(whole.left(length));
            ++tried;
        }
        std::printf("%d of %d cut documents open\n", opened, tried);
        EXPECT_TRUE(opensAndSaves(whole));
    }
    EXPECT_EQ(failedSaves, 0);
}

/// Each reference in turn leads to each object, its own among them.
TEST_F(HostileFilesTest, DocumentsWithCyclesEverywhere) {
    const QString whole = QString::fromLatin1(entangledDocument());
    QStringList targets{QStringLiteral("1"), QStringLiteral("2"), QStringLiteral("3"), QStringLiteral("4"),
                        QStringLiteral("9999")};
    for (int number = PdfBuilder::firstExtraObject; number < PdfBuilder::firstExtraObject + 12; ++number)
        targets.append(QString::number(number));
    int candidate = 0;
    int tried = 0;
    int opened = 0;
    static const QRegularExpression reference(QStringLiteral("(\\d+) 0 R"));
    for (auto found = reference.globalMatch(whole); found.hasNext();) {
        const auto match = found.next();
        for (const QString& target : targets) {
            if (!isLongRun() && ++candidate % 5 != 0)
                continue;
            ++tried;
            SCOPED_TRACE(
                QStringLiteral("reference at %1 to %2").arg(match.capturedStart()).arg(target).toStdString());
            // Padded, so that the cross-reference table stays right where that can be.
            const QString padded = target.rightJustified(match.capturedLength(1), QLatin1Char(' '));
            QString changed = whole;
            opened += opensAndSaves(
                changed.replace(match.capturedStart(1), match.capturedLength(1), padded).toLatin1());
        }
    }
    std::printf("%d of %d documents with a wrong reference open, %d cannot be saved\n", opened, tried,
                failedSaves);
    EXPECT_GT(opened, 100);
}

TEST_F(HostileFilesTest, CyclesInTheStructureOfTheFile) {
    const QByteArray whole = entangledDocument();
    const qsizetype table = whole.lastIndexOf("xref\n0 1");
    const auto withTrailer = [&](const QByteArray& entries) {
        return QByteArray(whole).replace("trailer\n<<", "trailer\n<< " + entries);
    };
    EXPECT_TRUE(opensAndSaves(withTrailer("/Prev " + QByteArray::number(table))));
    EXPECT_TRUE(opensAndSaves(withTrailer("/XRefStm " + QByteArray::number(table))));
    opensAndSaves(withTrailer("/Encrypt 1000 0 R"));  // either way it comes to an end
    // A stream whose length is the stream itself, or an object that points to itself.
    EXPECT_TRUE(opensAndSaves(QByteArray(whole).replace("/Length 9 ", "/Length 1000 0 R ")));
    EXPECT_TRUE(opensAndSaves(QByteArray(whole).replace("[/ICCBased 1000 0 R]", "1008 0 R")));
    // Object streams that lie in themselves.
    const QByteArray dense = rewritten(whole);
    for (int number = 1; number < 24; ++number) {
        const QByteArray reference = QByteArray::number(number) + " 0 R";
        opensAndSaves(QByteArray(dense).replace("/Type /ObjStm", "/Type /ObjStm /Extends " + reference));
        opensAndSaves(QByteArray(dense).replace("/N ", "/N " + reference + " /M "));
    }
}

TEST_F(HostileFilesTest, NothingOfADocumentIsExecutedOrFetched) {
    QDir().mkpath(path("geheim"));
    writeFile(path("geheim/Akte.txt"), "(GEHEIM) Tj");
    writeFile(path("geheim/start"), "#!/bin/sh\ntouch \"$(dirname \"$0\")/gestartet\"\n");
    QFile::setPermissions(path("geheim/start"), QFile::ReadOwner | QFile::ExeOwner);
    const std::string file = path("geheim/Akte.txt").toStdString();
    const std::string launch = "<< /S /Launch /F (" + path("geheim/start").toStdString() + ") >>";
    const std::string fetch = "<< /S /URI /URI (file://" + file + ") >>";
    const std::string outside = "/F (" + file + ") /FFilter []";
    writeFile(
        path("Vertrag.pdf"),
        PdfBuilder()
            .page("/Contents 1000 0 R /AA << /O " + launch + " /C " + fetch +
                  " >> /Resources << /XObject << /F 1001 0 R /R 1002 0 R >> >> /Annots [1003 0 R 1004 0 R]")
            .stream(outside, "/F Do /R Do")
            .stream("/Type /XObject /Subtype /Form /BBox [0 0 99 99] " + outside, "")
            .stream("/Type /XObject /Subtype /Form /BBox [0 0 99 99] /Ref << /F (" + file + ") /Page 0 >>",
                    "")
            .object("<< /Type /Annot /Subtype /Link /Rect [0 0 595 842] /A " + launch + " /AA << /PO " +
                    fetch + " /E " + launch + " >> >>")
            .object("<< /Type /Annot /Subtype /Movie /Rect [0 0 595 842] /Movie << /F (" + file + ") >> >>")
            .catalog(
                "/OpenAction " + launch + " /AA << /WS " + launch + " /DS " + fetch +
                " >> /Names << /JavaScript << /Names [(a) << /S /JavaScript /JS (app.launchURL\\('file://" +
                file + "'\\)) >>] >> >>")
            .bytes());

    const FolderWatch watch(path("geheim"));
    ProcessRenderer renderer{QStringLiteral(VELLMORA_RENDERER)};
    ContentWindow shown(
        std::make_unique<ContentView>(workspace.makeLibrary(), workspace.panels, documentProcesses()),
        renderer, Theme(SystemFonts::load()));
    ContentView& content = shown.content();
    shown.window().show();
    content.loadPDF(url("Vertrag.pdf"));
    content.addStampToCurrentPage(content.stampLibrary().selectedPreset());
    QTest::qWait(300);
    QTest::mouseClick(shown.editor(), Qt::LeftButton, {}, {20, 20});
    content.beginSaveFlow(ContentView::SaveMode::overwriteOriginal);
    EXPECT_EQ(content.statusText.value(), QStringLiteral("Original überschrieben: Vertrag.pdf"));
    QTest::qWait(100);
    EXPECT_FALSE(watch.hasSeenAnything());
    const QByteArray written = plain(readFile(path("Vertrag.pdf")));
    EXPECT_TRUE(written.contains("/Resources"));
    for (const char* trace : {"GEHEIM", "Launch", "JavaScript", "OpenAction", "/URI"})
        EXPECT_FALSE(written.contains(trace)) << trace;
    readFile(path("geheim/Akte.txt"));
    EXPECT_TRUE(watch.hasSeenAnything()) << "the watch does not watch";
}

TEST_F(HostileFilesTest, DocumentsOfAHundredThousandPages) {
    if (!isLongRun())
        GTEST_SKIP() << "takes long";
    constexpr int count = 100000;
    const auto document = pages(count).document();
    ASSERT_TRUE(document);
    ASSERT_EQ(document->pageCount(), count);
    const StampsByPage stamps{{0, {stampAt({10, 10, 60, 30})}}, {count - 1, {stampAt({10, 10, 60, 30})}}};
    PDFExporter::save(*document, stamps, url("Kopie.pdf"));
    EXPECT_TRUE(isWholePdf(readFile(path("Kopie.pdf")), count));
}

TEST_F(HostileFilesTest, FilesOfTwoGigabytes) {
    if (!isLongRun())
        GTEST_SKIP() << "takes long";
    constexpr qint64 size = (qint64(2) << 30) + 1000;
    writeFile(path("leer.pdf"), {});
    ASSERT_TRUE(QFile::resize(path("leer.pdf"), size));  // a hole takes no room
    EXPECT_FALSE(open([&] { return openDocument(url("leer.pdf")); }));
    writeFile(path("Vertrag.pdf"), pages(3).bytes());
    ASSERT_TRUE(QFile::resize(path("Vertrag.pdf"), size));
    const auto document = openDocument(url("Vertrag.pdf"));
    ASSERT_TRUE(document);
    PDFExporter::save(*document, {}, url("Kopie.pdf"));
    EXPECT_TRUE(isWholePdf(readFile(path("Kopie.pdf")), 3));
}
