#include "base/Error.h"
#include "base/FileSnapshot.h"
#include "base/FileState.h"
#include "pdf/PDFContext.h"
#include "pdf/PagePdf.h"
#include "tests/support/GTestQt.h"
#include "tests/support/TestDocuments.h"
#include "tests/support/TestPdf.h"

#include <functional>
#include <thread>
#include <utility>

#include <QDeadlineTimer>
#include <QFile>
#include <QTemporaryDir>

using namespace vellmora;
using namespace vellmora::test;

namespace {

/// So large that it is not copied at once.
constexpr qsizetype scanSize = 24 << 20;

/// A page that shows one picture, of which nothing is looked at.
QByteArray scannedPage() {
    PdfBuilder builder;
    builder
        .page("/MediaBox [0 0 300 400] /Resources << /XObject << /Scan 1000 0 R >> >>",
              "300 0 0 400 0 0 cm /Scan Do")
        .stream(
            "/Type /XObject /Subtype /Image /Width 1 /Height 1 /ColorSpace /DeviceGray "
            "/BitsPerComponent 8 /Filter /DCTDecode",
            std::string(scanSize, 'a'));
    return builder.bytes();
}

/// A file that somebody else, or another program, does something to.
class Victim {
public:
    explicit Victim(QString path) : m_path(std::move(path)) { writeFile(m_path, scannedPage()); }

    const QString& path() const { return m_path; }
    /// From then on its times tell of every change.
    void waitUntilItIsOld() const {
        while (FileState::of(m_path)->isRecent)
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    void overwrite(qint64 place, const QByteArray& with) const {
        QFile file(m_path);
        ASSERT_TRUE(file.open(QIODevice::ReadWrite) && file.seek(place));
        file.write(with);
    }
    void replace(const QByteArray& what, const QByteArray& with) const {
        overwrite(readFile(m_path).indexOf(what), with);
    }
    void touch() const { QFile::setPermissions(m_path, QFileDevice::ReadOwner); }
    void cutOff() const { QFile::resize(m_path, scanSize / 2); }

private:
    QString m_path;
};

/// Lets something happen when a part of the picture is there.
class WatchingConsumer : public MemoryConsumer {
public:
    explicit WatchingConsumer(std::function<void()> event) : m_event(std::move(event)) {}
    void write(const char* bytes, qint64 count) override {
        MemoryConsumer::write(bytes, count);
        if (m_event && this->bytes().size() > scanSize / 4)
            std::exchange(m_event, nullptr)();
    }
    void finish() override { isFinished = true; }

    bool isFinished = false;

private:
    std::function<void()> m_event;
};

/// One that cannot take back what it was given.
class OneWayConsumer : public WatchingConsumer {
public:
    using WatchingConsumer::WatchingConsumer;
    bool restart() override { return false; }
};

/// Of a file which the system has in its memory.
struct OpenDocument {
    explicit OpenDocument(const QString& path) {
        readFile(path);
        document = PDFDocument::open(QUrl::fromLocalFile(path), documentProcesses());
        content = document->content();
    }

    /// The message of what is thrown; empty where nothing is.
    QString save(PDFDataConsumer& consumer) const {
        try {
            const auto context = PDFContext::create(consumer, *document);
            context->beginPage();
            context->drawPage(0, DisplayBox::mediaBox);
            context->endPage();
            context->close();
            return {};
        } catch (const Error& error) {
            return error.reason();
        }
    }

    std::shared_ptr<const FileSnapshot> content;
    std::shared_ptr<const PDFDocument> document;
};

class DirectSaveTest : public testing::Test {
protected:
    Victim victim(const QString& name) const { return Victim(folder.filePath(name)); }

    QTemporaryDir folder;
};

void expectPicture(const QByteArray& pdf, const QByteArray& picture) {
    EXPECT_TRUE(pdf.indexOf("aaaa") > 0 && pdf.sliced(pdf.indexOf("aaaa")).startsWith(picture));
    const auto document = documentOf(pdf);
    ASSERT_TRUE(document);
    EXPECT_EQ(document->pageCount(), 1);
    EXPECT_EQ(document->page(0)->bounds(DisplayBox::mediaBox), (Rect{0, 0, 300, 400}));
}

const QString changed =
    QStringLiteral("Die Datei wurde geändert, während sie gelesen wurde. Bitte erneut öffnen.");

}  // namespace

TEST_F(DirectSaveTest, WhatIsNotCopiedIsSavedStraightFromTheFileThatNobodyTouched) {
    const Victim file = victim(QStringLiteral("scan.pdf"));
    EXPECT_FALSE(FileSnapshot::open(file.path())->canBeReadDirectly())
        << "its times may not tell of a change";
    file.waitUntilItIsOld();
    if (!FileSnapshot::open(file.path())->canBeReadDirectly())
        GTEST_SKIP() << "the file system does not tell what it has in memory";
    const OpenDocument open(file.path());
    for (int save = 0; save < 2; ++save) {
        ASSERT_TRUE(open.content->canBeReadDirectly());
        MemoryConsumer consumer;
        EXPECT_EQ(open.save(consumer), QString());
        expectPicture(consumer.bytes(), QByteArray(scanSize, 'a'));
    }
    EXPECT_FALSE(makePagePdf(*open.document, 0).isEmpty());
    MemoryConsumer meanwhile;
    EXPECT_EQ(open.save(meanwhile), QString());
    expectPicture(meanwhile.bytes(), QByteArray(scanSize, 'a'));
    const QDeadlineTimer end(10000);
    while (open.content->view(0, 1).empty() && !end.hasExpired())
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_FALSE(open.content->view(0, 1).empty()) << "once a page was looked at, all of it is copied";
    EXPECT_FALSE(open.content->canBeReadDirectly());
    file.cutOff();
    MemoryConsumer consumer;
    EXPECT_EQ(open.save(consumer), QString()) << "from the snapshot, by the same process";
    expectPicture(consumer.bytes(), QByteArray(scanSize, 'a'));
}

/// Of a process: its own and that of files, without what it shares with others; in bytes.
qint64 ownMemory(pid_t process) {
    const QByteArray status = readFile(QStringLiteral("/proc/%1/status").arg(process));
    const auto figure = [&](const QByteArray& name) {
        const qsizetype start = status.indexOf(name) + name.size();
        return status.sliced(start, status.indexOf("kB", start) - start).trimmed().toLongLong() << 10;
    };
    return figure("RssAnon:") + figure("RssFile:");
}

TEST_F(DirectSaveTest, WhatTheProcessReadOfTheFileItSharesOnceAllIsCopied) {
    PdfBuilder builder;
    for (int i = 0; i < 400; ++i)
        builder.page("/MediaBox [0 0 300 400]", "%" + std::string(64 << 10, 'a'));
    const QString path = folder.filePath(QStringLiteral("seiten.pdf"));
    writeFile(path, builder.bytes());
    const OpenDocument open(path);
    const pid_t process = open.document->processID().value();
    const qint64 before = ownMemory(process);
    EXPECT_FALSE(makePagePdf(*open.document, 0).isEmpty());
    const QDeadlineTimer end(10000);
    while (ownMemory(process) > before - (2 << 20) && !end.hasExpired())
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_LE(ownMemory(process), before - (2 << 20)) << "some 3 MB were taken from the file for 400 pages";
    QFile::resize(path, 0);
    EXPECT_FALSE(makePagePdf(*open.document, 399).isEmpty());
    MemoryConsumer consumer;
    EXPECT_EQ(open.save(consumer), QString());
    EXPECT_EQ(open.document->processID(), process);
}

TEST_F(DirectSaveTest, AFileThatIsCutShortBeforeItIsCopiedEndsNoMoreThanTheLookAtIt) {
    const Victim file = victim(QStringLiteral("scan.pdf"));
    const OpenDocument open(file.path());
    QFile::resize(file.path(), 0);
    EXPECT_TRUE(makePagePdf(*open.document, 0).isEmpty());
    EXPECT_TRUE(makePagePdf(*open.document, 0).isEmpty());
    WatchingConsumer consumer(nullptr);
    EXPECT_EQ(open.save(consumer), changed);
    EXPECT_FALSE(consumer.isFinished);
    EXPECT_EQ(documentOf(scannedPage())->pageCount(), 1) << "others are not concerned";
}

TEST_F(DirectSaveTest, AChangeMeanwhileIsRefusedOrAllOfTheNewVersionIsSaved) {
    const Victim scan = victim(QStringLiteral("scan.pdf"));
    const Victim page = victim(QStringLiteral("page.pdf"));
    const Victim shorter = victim(QStringLiteral("shorter.pdf"));
    const Victim oneWay = victim(QStringLiteral("one way.pdf"));
    oneWay.waitUntilItIsOld();
    if (!FileSnapshot::open(oneWay.path())->canBeReadDirectly())
        GTEST_SKIP() << "the file system does not tell what it has in memory";
    const auto saved = [](const Victim& file, auto&& consumer) {
        const OpenDocument open(file.path());
        EXPECT_TRUE(open.content->canBeReadDirectly());
        QString message = open.save(consumer);
        EXPECT_EQ(message.isEmpty(), consumer.isFinished);
        return message;
    };
    // The edges of the picture were read with the page.
    constexpr qsizetype edge = 64 << 10;
    const qint64 start = readFile(scan.path()).indexOf("aaaa");
    const QByteArray other(scanSize - 2 * edge, 'b');
    WatchingConsumer consumer([&] { scan.overwrite(start + edge, other); });
    EXPECT_EQ(saved(scan, consumer), QString());
    expectPicture(consumer.bytes(), QByteArray(edge, 'a') + other + QByteArray(edge, 'a'));

    const auto turnPage = [&] { page.replace("[0 0 300 400]", "[0 0 400 300]"); };
    EXPECT_EQ(saved(page, WatchingConsumer(turnPage)), changed) << "the page was known before";
    EXPECT_EQ(saved(shorter, WatchingConsumer([&] { shorter.cutOff(); })), changed);
    EXPECT_EQ(saved(oneWay, OneWayConsumer([&] { oneWay.touch(); })), changed);
}

TEST_F(DirectSaveTest, AChangeBetweenOpeningAndSavingIsNoticed) {
    const Victim page = victim(QStringLiteral("page.pdf"));
    const Victim shorter = victim(QStringLiteral("shorter.pdf"));
    shorter.waitUntilItIsOld();
    const OpenDocument turned(page.path());
    page.replace("[0 0 300 400]", "[0 0 400 300]");
    const OpenDocument cut(shorter.path());
    shorter.cutOff();
    WatchingConsumer consumer(nullptr);
    EXPECT_EQ(turned.save(consumer), changed);
    EXPECT_EQ(cut.save(consumer), changed);
    EXPECT_FALSE(consumer.isFinished);
}

TEST_F(DirectSaveTest, AFileThatOnlyGotOtherPermissionsOrAnotherPlaceIsSaved) {
    const Victim touched = victim(QStringLiteral("touched.pdf"));
    const Victim removed = victim(QStringLiteral("removed.pdf"));
    removed.waitUntilItIsOld();
    if (!FileSnapshot::open(removed.path())->canBeReadDirectly())
        GTEST_SKIP() << "the file system does not tell what it has in memory";
    const auto expectSaved = [](const Victim& file, const std::function<void()>& event) {
        const OpenDocument open(file.path());
        EXPECT_TRUE(open.content->canBeReadDirectly());
        WatchingConsumer consumer(event);
        EXPECT_EQ(open.save(consumer), QString());
        EXPECT_TRUE(consumer.isFinished);
        expectPicture(consumer.bytes(), QByteArray(scanSize, 'a'));
    };
    expectSaved(touched, [&] { touched.touch(); });
    expectSaved(removed, [&] { QFile::remove(removed.path()); });
}
