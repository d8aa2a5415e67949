#include "base/Error.h"
#include "base/FileSnapshot.h"
#include "base/WorkProgress.h"
#include "pdf/DocumentSession.h"
#include "pdf/PDFContext.h"
#include "pdf/PagePdf.h"
#include "tests/support/GTestQt.h"
#include "tests/support/RewrittenPdf.h"
#include "tests/support/TestDocuments.h"
#include "tests/support/TestImages.h"
#include "tests/support/TestPdf.h"

#include <chrono>
#include <csignal>
#include <functional>
#include <new>
#include <random>
#include <string>
#include <sys/resource.h>
#include <thread>
#include <utility>
#include <vector>

using namespace vellmora;
using namespace vellmora::test;
using namespace std::chrono_literals;

namespace {

DocumentLimits shortLimits() {
    DocumentLimits limits;
    limits.silence = 1000ms;
    limits.view = 1000ms;
    limits.bytesForFile = 1 << 22;
    limits.bytesForView = 1 << 22;
    return limits;
}

/// The message of what is thrown; empty where nothing is.
QString failureOf(const std::function<void()>& task) {
    try {
        task();
        return {};
    } catch (const Error& error) {
        return error.reason();
    }
}

void save(const PDFDocument& document, PDFDataConsumer& consumer, WorkProgress* progress = nullptr) {
    const auto context = PDFContext::create(consumer, document, progress);
    for (qsizetype index = 0; index < document.pageCount(); ++index) {
        context->beginPage();
        context->drawPage(index, DisplayBox::mediaBox);
        context->endPage();
    }
    context->close();
}

qsizetype savedPages(const PDFDocument& document) {
    MemoryConsumer consumer;
    save(document, consumer);
    return documentOf(consumer.bytes())->pageCount();
}

/// Does something to the process when the first bytes come.
class InterruptingConsumer : public MemoryConsumer {
public:
    explicit InterruptingConsumer(std::function<void()> interrupt) : m_interrupt(std::move(interrupt)) {}
    void write(const char* bytes, qint64 count) override {
        MemoryConsumer::write(bytes, count);
        if (m_interrupt)
            std::exchange(m_interrupt, nullptr)();
    }
    void finish() override { isFinished = true; }

    bool isFinished = false;

private:
    std::function<void()> m_interrupt;
};

class DocumentProcessTest : public testing::Test {
protected:
    void signal(int number) const { ::kill(*document->processID(), number); }

    DocumentProcesses processes{QStringLiteral(VELLMORA_DOCUMENT), shortLimits()};
    std::shared_ptr<const PDFDocument> document = PDFDocument::fromData(pages(3).bytes(), processes);
};

/// Big enough that it is not written at once, and not to be copied as it is: its pages' comments, of letters
/// without order, are compressed.
QByteArray bigDocument() {
    PdfBuilder builder;
    std::minstd_rand letters;
    for (int page = 0; page < 4; ++page) {
        std::string comment = "%";
        while (comment.size() < 1 << 20)
            comment += static_cast<char>('A' + letters() % 26);
        builder.page("/Contents " + std::to_string(1000 + page) + " 0 R").stream("", comment + '\n');
    }
    return builder.bytes();
}

}  // namespace

TEST_F(DocumentProcessTest, AKilledProcessIsReplaced) {
    const auto first = document->processID();
    signal(SIGKILL);
    EXPECT_FALSE(makePagePdf(*document, 0).isEmpty());
    EXPECT_NE(document->processID(), first);
    signal(SIGKILL);
    EXPECT_EQ(savedPages(*document), 3);
}

/// The process has nothing else to do than wait for them, for longer than it may be silent.
TEST_F(DocumentProcessTest, PicturesMayBeLate) {
    Composition composition;
    using Kind = ComposeCommand::Kind;
    composition.commands = {{Kind::beginPage, 0, 0, {}},
                            {Kind::addPicture, 0, 0, {}},
                            {Kind::drawPicture, 0, 0, {0, 0, 9, 9}},
                            {Kind::endPage, 0, 0, {}}};
    composition.pageCount = 1;
    composition.pictures = [] {
        std::this_thread::sleep_for(shortLimits().silence + 1500ms);
        return std::vector<EncodedPicture>{encodePicture(Image(plainImage(2, 2, QColor(255, 0, 0))))};
    };
    MemoryConsumer consumer;
    document->session().compose(composition, consumer);
    EXPECT_EQ(documentOf(consumer.bytes())->pageCount(), 1);
    // Who waits for pictures that cannot be made is told why.
    composition.pictures = []() -> std::vector<EncodedPicture> { throw std::bad_alloc(); };
    EXPECT_THROW(document->session().compose(composition, consumer), std::bad_alloc);
    EXPECT_EQ(savedPages(*document), 3);
}

TEST_F(DocumentProcessTest, AStoppedProcessCostsOneOperation) {
    signal(SIGSTOP);
    EXPECT_TRUE(makePagePdf(*document, 0).isEmpty());
    EXPECT_FALSE(makePagePdf(*document, 0).isEmpty());
    signal(SIGSTOP);
    EXPECT_EQ(failureOf([&] { savedPages(*document); }),
              QStringLiteral("Das Dokument braucht zu viel Zeit."));
    EXPECT_EQ(savedPages(*document), 3);
}

TEST_F(DocumentProcessTest, ASaveThatIsInterruptedIsNotFinished) {
    document = PDFDocument::fromData(bigDocument(), processes);
    for (const int number : {SIGKILL, SIGSTOP}) {
        InterruptingConsumer consumer([&, process = *document->processID()] { ::kill(process, number); });
        EXPECT_FALSE(failureOf([&] { save(*document, consumer); }).isEmpty());
        EXPECT_FALSE(consumer.isFinished);
        EXPECT_EQ(savedPages(*document), 4);
    }
}

TEST_F(DocumentProcessTest, ACancelledSaveEndsAndLeavesTheDocument) {
    document = PDFDocument::fromData(bigDocument(), processes);
    WorkProgress progress;
    InterruptingConsumer consumer([&] { progress.cancel(); });
    EXPECT_EQ(failureOf([&] { save(*document, consumer, &progress); }), QStringLiteral("Abgebrochen."));
    EXPECT_FALSE(consumer.isFinished);
    EXPECT_EQ(savedPages(*document), 4);
    WorkProgress cancelled;
    cancelled.cancel();
    EXPECT_THROW(
        PDFDocument::open(QUrl::fromLocalFile(QStringLiteral("/nowhere.pdf")), processes, &cancelled), Error);
}

TEST_F(DocumentProcessTest, WithoutAProgramNothingIsOpened) {
    DocumentProcesses none(QStringLiteral("/nonexistent/vellmora-document"));
    EXPECT_EQ(failureOf([&] { PDFDocument::fromData(pages(1).bytes(), none); }),
              QStringLiteral("Der Prozess, der PDF-Dateien liest, konnte nicht gestartet werden."));
}

TEST_F(DocumentProcessTest, IsConfined) {
    const QByteArray status =
        readFile(QStringLiteral("/proc/%1/status").arg(static_cast<qint64>(*document->processID())));
    EXPECT_TRUE(status.contains("Seccomp:\t2\n")) << "system calls are filtered";
    EXPECT_TRUE(status.contains("NoNewPrivs:\t1\n"));
    EXPECT_TRUE(status.contains("Threads:\t1\n"));
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
TEST_F(DocumentProcessTest, HasAsMuchMemoryAsTheSourceAndALimitMore) {
    rlimit limit{};
    ASSERT_EQ(::prlimit(*document->processID(), RLIMIT_AS, nullptr, &limit), 0);
    EXPECT_EQ(limit.rlim_cur, processes.limits().memory + document->content()->size());
    EXPECT_EQ(limit.rlim_max, limit.rlim_cur);
}

TEST_F(DocumentProcessTest, ObjectsThatUnpackToMoreMemoryAreNoDamage) {
    DocumentLimits limits;
    limits.memory = 192 << 20;
    DocumentProcesses modest(QStringLiteral(VELLMORA_DOCUMENT), limits);
    const auto packed = [](size_t unpackedSize) {
        PdfBuilder builder = pages(1);
        builder.catalog("/Odd 1000 0 R").object('(' + std::string(unpackedSize, ' ') + ')');
        return rewritten(builder.bytes());
    };
    EXPECT_EQ(PDFDocument::fromData(packed(1 << 20), modest)->pageCount(), 1);
    const QByteArray bomb = packed(160 << 20);
    EXPECT_LT(bomb.size(), 1 << 20);
    EXPECT_EQ(failureOf([&] { PDFDocument::fromData(bomb, modest); }),
              QStringLiteral("Das Dokument braucht zu viel Arbeitsspeicher."));
}
#endif

class LyingProcessTest : public testing::TestWithParam<const char*> {
public:
    LyingProcessTest() { qputenv("VELLMORA_LIE", GetParam()); }
    ~LyingProcessTest() override { qunsetenv("VELLMORA_LIE"); }

protected:
    static DocumentLimits limits() {
        DocumentLimits limits = shortLimits();
        limits.start = 500ms;
        return limits;
    }
    DocumentProcesses processes{QStringLiteral(VELLMORA_LYING_DOCUMENT), limits()};
    QByteArray bytes = pages(2).bytes();
};

using LyingWhileOpening = LyingProcessTest;
using LyingWhileWriting = LyingProcessTest;

TEST_P(LyingWhileOpening, OpensNothing) {
    EXPECT_THROW(PDFDocument::fromData(bytes, processes), Error);
}

INSTANTIATE_TEST_SUITE_P(, LyingWhileOpening,
                         testing::Values("never ready", "not ready", "silent", "no number", "no width",
                                         "far away", "too many pages", "half a page",
                                         "lost page that is not there", "lost page twice", "data too early",
                                         "unknown reply", "unknown failure", "a failure of the program's own",
                                         "endless reply", "progress beyond the end", "ends while opening",
                                         "half a reply", "fewer than none", "begun unasked"));

TEST_P(LyingWhileWriting, WritesNothing) {
    const auto document = PDFDocument::fromData(bytes, processes);
    ASSERT_EQ(document->pageCount(), 2);
    EXPECT_EQ(makePagePdf(*document, 0), QByteArray());
    const auto again = PDFDocument::fromData(bytes, processes);
    InterruptingConsumer consumer(nullptr);
    EXPECT_THROW(
        {
            const auto context = PDFContext::create(consumer, *again);
            context->beginPage();
            context->endPage();
            context->close();
        },
        Error);
    EXPECT_FALSE(consumer.isFinished);
}

INSTANTIATE_TEST_SUITE_P(, LyingWhileWriting,
                         testing::Values("silent while writing", "endless data", "no data", "no pdf",
                                         "incomplete page that is not there", "source beyond its end",
                                         "source far beyond its end", "half a place in the source",
                                         "endless source", "ends while writing", "pages while writing"));

/// An honest stand-in, which only the program can make say otherwise.
TEST(StandInTest, IsBelievedWhileItIsHonestAndNotWhenTheDocumentChangesItsPageCount) {
    qputenv("VELLMORA_LIE", "");
    DocumentProcesses processes(QStringLiteral(VELLMORA_LYING_DOCUMENT), shortLimits());
    const auto document = PDFDocument::fromData(pages(2).bytes(), processes);
    EXPECT_EQ(makePagePdf(*document, 0), QByteArray("%PDF-1.7"));
    qputenv("VELLMORA_LIE", "other page count");
    ::kill(*document->processID(), SIGKILL);
    processes.take();  // the spare one, which knows nothing of the other count
    EXPECT_EQ(makePagePdf(*document, 0), QByteArray());
    qunsetenv("VELLMORA_LIE");
}
