#include "preview/PDFView.h"
#include "preview/ProcessRenderer.h"
#include "tests/support/EventLoop.h"
#include "tests/support/TestDocuments.h"
#include "tests/support/TestImages.h"
#include "tests/support/TestPdf.h"

#include <chrono>
#include <csignal>
#include <gtest/gtest.h>

#include <QSignalSpy>
#include <QTest>

using namespace vellmora;
using namespace vellmora::test;

namespace {

class PagePdfQueueTest : public testing::Test {
protected:
    /// Tells them apart by the width of their pages, which is 100 points and the page's index.
    static std::shared_ptr<const PDFDocument> distinctPages(int count) {
        PdfBuilder source;
        for (int page = 0; page < count; ++page)
            source.page("/MediaBox [0 0 " + std::to_string(100 + page) + " 100]");
        return source.document();
    }
    double deliveredWidth(qsizetype delivery) const {
        const auto pagePdf = documentOf(delivered[delivery][1].toByteArray());
        return pagePdf ? pagePdf->page(0)->bounds(DisplayBox::mediaBox).width : 0;
    }
    QList<qsizetype> deliveredPages() const {
        QList<qsizetype> pages;
        for (const QList<QVariant>& delivery : delivered)
            pages.append(delivery.first().value<qsizetype>());
        return pages;
    }

    static DocumentLimits patience() {
        DocumentLimits limits;
        limits.view = limits.silence = std::chrono::hours(1);
        return limits;
    }

    DocumentProcesses processes{QStringLiteral(VELLMORA_DOCUMENT), patience()};  // outlives the queue's work
    PagePdfQueue queue;
    QSignalSpy delivered{&queue, &PagePdfQueue::ready};
};

}  // namespace

TEST_F(PagePdfQueueTest, DrawsTheNewestRequestFirstAndDropsWhatWasOvertaken) {
    queue.setDocument(distinctPages(20));
    for (qsizetype page = 0; page < 20; ++page)
        queue.request(page);
    queue.request(0);
    queue.request(15);
    const QList<qsizetype> expected{0, 15, 19, 18, 17, 16, 14, 13, 12};
    ASSERT_TRUE(QTest::qWaitFor([&] { return delivered.size() == expected.size(); }));
    settle();
    EXPECT_EQ(deliveredPages(), expected) << "the first was being drawn already and is not drawn twice";
    EXPECT_EQ(deliveredWidth(2), 119);
}

TEST_F(PagePdfQueueTest, DeliversNothingOfADocumentThatIsGone) {
    queue.setDocument(pages(3).document());
    for (const qsizetype page : {0, 1, 2})
        queue.request(page);
    queue.setDocument(distinctPages(1));
    queue.request(0);
    queue.request(7);
    ASSERT_TRUE(QTest::qWaitFor([&] { return delivered.size() == 2; }));
    settle();
    EXPECT_EQ(deliveredPages(), (QList<qsizetype>{7, 0}));
    EXPECT_EQ(delivered[0][1].toByteArray(), QByteArray()) << "no such page";
    EXPECT_EQ(deliveredWidth(1), 100);
}

TEST_F(PagePdfQueueTest, APageThatNeverComesHoldsUpNeitherTheNextDocumentNorTheEnd) {
    const auto stuck = [&] {
        auto document = PDFDocument::fromData(pages(1).bytes(), processes);
        ::kill(*document->processID(), SIGSTOP);
        return document;
    };
    queue.setDocument(stuck());
    queue.request(0);
    queue.setDocument(distinctPages(1));
    queue.request(0);
    ASSERT_TRUE(QTest::qWaitFor([&] { return delivered.size() == 1; }));
    EXPECT_EQ(deliveredWidth(0), 100);
    queue.setDocument(stuck());
    queue.request(0);
}

TEST(PageTurningTest, ShowsThePageThatQuickTurningEndsAtAndThoseItPassed) {
    constexpr int count = 30;
    PdfBuilder source;
    for (int page = 0; page < count; ++page) {
        const char* colour = page == count - 1 ? "1 0 0" : page == 9 ? "0 1 0" : "0 0 1";
        source.page({}, filledRect(colour, "0 0 595 842"));
    }
    ProcessRenderer renderer{QStringLiteral(VELLMORA_RENDERER)};
    PDFView view(renderer, nullptr);
    view.resize(300, 400);
    view.setAutoScales(true);
    view.setDocument(source.document());
    const auto middle = [&] { return view.grab().toImage().pixelColor(150, 200); };
    for (int page = 1; page < count; ++page) {
        QTest::keyClick(&view, Qt::Key_PageDown);
        middle();
    }
    EXPECT_TRUE(QTest::qWaitFor([&] { return isClose(middle(), Qt::red); }));
    view.goTo(9);
    EXPECT_TRUE(QTest::qWaitFor([&] { return isClose(middle(), Qt::green); }));
}
