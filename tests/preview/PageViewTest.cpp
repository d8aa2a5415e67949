#include "pdf/DocumentProcesses.h"
#include "preview/PDFView.h"
#include "preview/ProcessRenderer.h"
#include "tests/support/GTestQt.h"
#include "tests/support/TestImages.h"
#include "tests/support/TestPdf.h"

#include <cmath>
#include <csignal>

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QWheelEvent>

using namespace vellmora;
using namespace vellmora::test;

namespace {

class PDFViewTest : public testing::Test {
protected:
    PDFViewTest() {
        view.resize(600, 800);
        view.setAutoScales(true);
        view.show();
    }
    void wheel(int angle, Qt::KeyboardModifiers modifiers = Qt::NoModifier, QPointF at = {10, 10}) {
        QWheelEvent event(at, at, {}, {0, angle}, Qt::NoButton, modifiers, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(&view, &event);
    }
    QColor pixel(int x, int y) { return view.grab().toImage().pixelColor(x, y); }

    ProcessRenderer renderer{QStringLiteral(VELLMORA_RENDERER)};
    PDFView view{renderer, nullptr};
};

}  // namespace

TEST(PageGeometryTest, MapsExactlyAtEveryScaleOffsetAndPixelRatio) {
    const Rect box{-40, 100, 595.28, 841.89};
    for (const double ratio : {1.0, 1.25, 1.5, 2.0}) {
        for (const double scale : {0.05, 0.731, 1.0, 6.4}) {
            const PageGeometry page(box, {{887, 747}, ratio}, scale, {13.7, -200.3});
            EXPECT_TRUE(isNear(page.toView(box), page.frame(), 1e-9));
            const Rect stamp{12.5, 333.25, 166.6784, 41.6696};
            EXPECT_TRUE(isNear(page.toPage(page.toView(stamp)), stamp, 1e-9));
            EXPECT_NEAR(page.frame().width * ratio, page.pixelSize().width(), 1e-9);
            EXPECT_NEAR(page.frame().x * ratio, std::round(page.frame().x * ratio), 1e-9)
                << "on device pixels";
            EXPECT_NEAR(page.toView(stamp).width, stamp.width * scale, stamp.width * scale * 0.02 + 0.1);
        }
    }
}

TEST(PageGeometryTest, AnOffsetMovesThePageUpwards) {
    const PageGeometry::View view{{500, 500}, 1};
    const Rect box{0, 0, 100, 100};
    EXPECT_EQ(PageGeometry(box, view, 1).frame(), (Rect{200, 200, 100, 100}));
    EXPECT_EQ(PageGeometry(box, view, 1, {10, 20}).frame(), (Rect{210, 220, 100, 100}));
}

TEST(PageGeometryTest, TinyAndHugePagesFit) {
    for (const double side : {1.0, 14400.0}) {
        const Rect box{0, 0, side, side};
        const double scale = PageGeometry::fittingScale(box, {600, 800}, 8);
        EXPECT_NEAR(PageGeometry(box, {{600, 800}, 1}, scale).frame().width, 584, 1);
    }
    EXPECT_GT(PageGeometry::fittingScale({0, 0, 10, 10}, {4, 4}, 8), 0);
}

TEST(PageCacheTest, KeepsThePageOnScreenAndItsNeighboursHoweverMuchTheyTake) {
    ProcessRenderer renderer{QStringLiteral(VELLMORA_RENDERER)};
    PageCache pictures(renderer);
    pictures.setDocument(pages(4).document());
    pictures.setCentre(1);
    QSignalSpy delivered(&pictures, &PageCache::changed);
    const QSize size(4000, 4000);  // three of them are more than the budget
    for (const qsizetype page : {3, 0, 1, 2}) {
        pictures.request(page, {size, QRect(QPoint(0, 0), size)});
        ASSERT_TRUE(QTest::qWaitFor([&] { return !delivered.isEmpty(); }));
        delivered.clear();
    }
    for (const qsizetype page : {0, 1, 2})
        EXPECT_FALSE(pictures.picture(page).pixmap.isNull()) << page;
    EXPECT_TRUE(pictures.picture(3).pixmap.isNull());
}

/// Its PDF may have gone meanwhile, and cannot always be had again at once.
TEST(PageCacheTest, APageThatHasItsPictureIsShownInOtherSizesWheneverItIsAskedFor) {
    ProcessRenderer renderer{QStringLiteral(VELLMORA_RENDERER)};
    DocumentLimits limits;
    limits.view = std::chrono::milliseconds(500);
    DocumentProcesses processes(QStringLiteral(VELLMORA_DOCUMENT), limits);
    const auto document = PDFDocument::fromData(pages(3).bytes(), processes);
    PageCache pictures(renderer);
    pictures.setDocument(document);
    QSignalSpy delivered(&pictures, &PageCache::changed);
    const auto isShown = [&](qsizetype page, int side) {
        const PageCache::Wish wish{{side, side}, {0, 0, side, side}};
        pictures.request(page, wish);
        return QTest::qWaitFor([&] { return pictures.picture(page).shows == wish; }) &&
               pictures.picture(page).pixmap.size() == wish.fullSize;
    };
    for (const qsizetype page : {0, 1, 2})
        EXPECT_TRUE(isShown(page, 50)) << page;
    EXPECT_TRUE(isShown(2, 70));
    for (const qsizetype page : {1, 0, 1}) {
        pictures.setCentre(page);
        EXPECT_TRUE(isShown(page, 90 + 10 * int(delivered.size()))) << page;
    }
    ::kill(document->processID().value(), SIGSTOP);
    pictures.setCentre(2);
    QTest::qWait(1500);  // its PDF is asked for, in vain
    EXPECT_TRUE(isShown(2, 70));
    EXPECT_TRUE(isShown(2, 80));
}

TEST_F(PDFViewTest, ShowsThePageFittedOnBlack) {
    PdfBuilder source;
    source.page("/MediaBox [0 0 300 300] /CropBox [100 100 200 200]", filledRect("1 0 0", "100 100 50 50"));
    view.setDocument(source.document());
    const Rect shown = view.convertFromPage({100, 100, 100, 100});
    EXPECT_EQ(shown, (Rect{8, 108, 584, 584}));
    ASSERT_TRUE(QTest::qWaitFor([&] { return isClose(pixel(100, 650), Qt::red); }));
    EXPECT_TRUE(isClose(pixel(500, 300), Qt::white));
    EXPECT_TRUE(isClose(pixel(299, 401), Qt::red));
    EXPECT_TRUE(isClose(pixel(301, 401), Qt::white));
    EXPECT_TRUE(isClose(pixel(3, 400), Qt::black));
    EXPECT_TRUE(isClose(pixel(300, 50), Qt::black));
}

TEST_F(PDFViewTest, ShowsTurnedPagesUprightWithTheirFields) {
    PdfBuilder source;
    // Turned by 90 degrees, the page's left edge is its reader's top.
    source
        .page(
            "/MediaBox [0 0 100 100] /Rotate 90 /Annots [<< /Subtype /Widget /Rect [0 0 50 50] /AP << /N "
            "1000 0 R >> >>]")
        .stream("/Subtype /Form /BBox [0 0 1 1]", filledRect("0 0 1", "0 0 1 1"));
    view.setDocument(source.document());
    ASSERT_TRUE(QTest::qWaitFor([&] { return isClose(pixel(100, 200), Qt::blue); })) << "upper left";
    EXPECT_TRUE(isClose(pixel(400, 200), Qt::white));
    EXPECT_TRUE(isClose(pixel(100, 600), Qt::white));
}

TEST_F(PDFViewTest, KeysAndWheelTurnPagesWithinTheDocument) {
    view.setDocument(pages(4).document());
    QSignalSpy turns(&view, &PDFView::pageChanged);
    const auto press = [&](Qt::Key key) {
        QTest::keyClick(&view, key);
        return *view.currentPageIndex();
    };
    EXPECT_EQ(press(Qt::Key_PageUp), 0);
    EXPECT_EQ(press(Qt::Key_PageDown), 1);
    EXPECT_EQ(press(Qt::Key_Down), 2);
    EXPECT_EQ(press(Qt::Key_Left), 1);
    EXPECT_EQ(press(Qt::Key_End), 3);
    EXPECT_EQ(press(Qt::Key_Right), 3);
    EXPECT_EQ(press(Qt::Key_Home), 0);
    EXPECT_EQ(turns.size(), 5);
    wheel(-60);
    EXPECT_EQ(view.currentPageIndex(), 0) << "half a notch";
    wheel(-60);
    EXPECT_EQ(view.currentPageIndex(), 1);
    wheel(120);
    EXPECT_EQ(view.currentPageIndex(), 0);
}

TEST_F(PDFViewTest, AnEventOfManyNotchesTurnsOnePage) {
    view.setDocument(pages(9).document());
    wheel(-480);
    EXPECT_EQ(view.currentPageIndex(), 1);
}

TEST_F(PDFViewTest, ZoomsAboutThePointerWithinLimits) {
    view.setDocument(PdfBuilder().page("/MediaBox [0 0 400 600]").document());
    const QPointF pointer(420, 300);
    const Point anchor = fromQt(pointer, view.height());
    const Rect before = view.convertToPage({anchor.x, anchor.y, 0, 0});
    const double fitting = view.scaleFactor();
    for (int i = 0; i < 4; ++i)
        wheel(120, Qt::ControlModifier, pointer);
    EXPECT_NEAR(view.scaleFactor(), fitting * std::pow(1.25, 4), 1e-9);
    EXPECT_TRUE(isNear(view.convertToPage({anchor.x, anchor.y, 0, 0}), before, 1.0))
        << "what is under the pointer stays";
    for (int i = 0; i < 60; ++i)
        wheel(120, Qt::ControlModifier, pointer);
    EXPECT_NEAR(view.scaleFactor(), fitting * 12, 1e-9);
    view.setAutoScales(true);
    EXPECT_EQ(view.scaleFactor(), fitting);
    EXPECT_EQ(view.scrollOffset(), (Point{0, 0}));
}

TEST_F(PDFViewTest, EveryPageCanBeReadAndComesIntoSightWhateverTheScaleOfTheLast) {
    view.setDocument(PdfBuilder().page("/MediaBox [0 0 2 2]").page("/MediaBox [0 0 14400 14400]").document());
    view.setScaleFactor(view.scaleFactor());
    EXPECT_NEAR(view.scaleFactor(), 292, 1e-9);
    view.goTo(1);
    EXPECT_EQ(view.scaleFactor(), 4);
    view.setScaleFactor(0);
    EXPECT_NEAR(view.scaleFactor(), 584.0 / 14400 / 2, 1e-9);
    view.goTo(0);
    EXPECT_NEAR(view.scaleFactor(), 146, 1e-9);
}

TEST_F(PDFViewTest, AZoomedPageScrollsAndTurnsAtItsEdges) {
    view.setDocument(pages(3).document());
    view.setScaleFactor(view.scaleFactor() * 2);
    view.setScrollOffset({0, -10000});
    const double top = view.scrollOffset().y;
    wheel(-120);
    EXPECT_EQ(view.scrollOffset().y, top + 60);
    EXPECT_EQ(view.currentPageIndex(), 0);
    while (view.currentPageIndex() == 0)
        wheel(-120);
    EXPECT_EQ(view.currentPageIndex(), 1);
    EXPECT_EQ(view.scrollOffset().y, top) << "a page is read from its top";
    wheel(120);
    EXPECT_EQ(view.currentPageIndex(), 0);
    EXPECT_EQ(view.scrollOffset().y, -top) << "and come upon backwards from its end";
    QTest::keyClick(&view, Qt::Key_Space);
    EXPECT_EQ(view.currentPageIndex(), 1);
    QTest::keyClick(&view, Qt::Key_PageDown);
    EXPECT_EQ(view.currentPageIndex(), 1) << "scrolls first";
    EXPECT_GT(view.scrollOffset().y, top);
}

TEST_F(PDFViewTest, IsSharpAtEveryZoomAndRendersOnlyWhatIsInSight) {
    PdfBuilder source;
    source.page("/MediaBox [0 0 200 200]", filledRect("1 0 0", "100 100 0.5 0.5"));
    view.setDocument(source.document());
    view.setScaleFactor(1000);
    EXPECT_NEAR(view.scaleFactor(), 584.0 / 200 * 12, 1e-9);
    const Rect dot = view.convertFromPage({100, 100, 0.5, 0.5});
    const QPoint middle = toQt(dot, view.height()).center().toPoint();
    const int edge = qRound(toQt(dot, view.height()).right());
    ASSERT_TRUE(QTest::qWaitFor([&] { return isClose(pixel(edge - 2, middle.y()), Qt::red); }));
    EXPECT_TRUE(isClose(pixel(middle.x(), middle.y()), Qt::red));
    EXPECT_TRUE(isClose(pixel(edge + 2, middle.y()), Qt::white))
        << "half a point is 17 pixels wide, with a sharp edge";
}

TEST_F(PDFViewTest, TheNextPageIsThereBeforeItIsTurnedTo) {
    PdfBuilder source;
    source.page({}, filledRect("1 0 0", "0 0 595 842")).page({}, filledRect("0 0 1", "0 0 595 842"));
    view.setDocument(source.document());
    ASSERT_TRUE(QTest::qWaitFor([&] { return isClose(pixel(300, 400), Qt::red); }));
    ASSERT_TRUE(QTest::qWaitFor([&] { return !view.pictures().picture(1).pixmap.isNull(); }));
    QTest::keyClick(&view, Qt::Key_PageDown);
    EXPECT_TRUE(isClose(pixel(300, 400), Qt::blue)) << "painted at once, without a turn of the event loop";
}

TEST_F(PDFViewTest, SaysQuietlyWhenAPageCannotBeShown) {
    ProcessRenderer broken{QStringLiteral("/does/not/exist")};
    PDFView unlucky(broken, nullptr);
    unlucky.resize(600, 800);
    unlucky.setAutoScales(true);
    unlucky.setDocument(pages(2).document());
    const auto inkOf = [&] {
        const QImage image = unlucky.grab().toImage();
        int ink = 0;
        for (int x = 100; x < 500; ++x) {
            for (int y = 360; y < 440; ++y)
                ink += image.pixelColor(x, y).lightness() < 200 ? 1 : 0;
        }
        return ink;
    };
    EXPECT_EQ(inkOf(), 0);
    EXPECT_TRUE(QTest::qWaitFor([&] { return inkOf() > 100; })) << "a notice in the page's place";
    QTest::keyClick(&unlucky, Qt::Key_PageDown);
    EXPECT_EQ(unlucky.currentPageIndex(), 1);
}

TEST_F(PDFViewTest, SaysThatNothingCanBeShownUntilItCan) {
    const QTemporaryDir folder;
    const QString program = folder.filePath(QStringLiteral("renderer"));
    ProcessRenderer broken{program};
    PDFView unlucky(broken, nullptr);
    unlucky.resize(600, 800);
    unlucky.setAutoScales(true);
    unlucky.setDocument(pages(3).document());
    const auto saysSo = [&] {
        unlucky.grab();
        return unlucky.pageDescription().contains(QStringLiteral("Seitenanzeige startet nicht"));
    };
    const auto showsPage = [&](qsizetype page) {
        unlucky.grab();
        return !unlucky.pictures().picture(page).pixmap.isNull();
    };
    ASSERT_TRUE(QTest::qWaitFor(saysSo));
    unlucky.goTo(1);
    ASSERT_TRUE(QTest::qWaitFor(saysSo));
    QFile::link(QStringLiteral(VELLMORA_RENDERER), program);
    unlucky.goTo(2);
    EXPECT_TRUE(QTest::qWaitFor([&] { return showsPage(2); }));
    unlucky.goTo(1);
    EXPECT_TRUE(QTest::qWaitFor([&] { return showsPage(1); })) << "asked for again";
    EXPECT_EQ(unlucky.pageDescription(), QStringLiteral("Seite 2 von 3"));
}

TEST_F(PDFViewTest, APageThatMissedItsTimeIsAskedForAgainWhenItIsTurnedTo) {
    DocumentLimits limits;
    limits.view = std::chrono::seconds(1);
    DocumentProcesses processes(QStringLiteral(VELLMORA_DOCUMENT), limits);
    const auto document = PDFDocument::fromData(pages(2).bytes(), processes);
    ::kill(*document->processID(), SIGSTOP);
    view.setDocument(document);
    const auto isUnavailable = [&] { return view.pictures().picture(0).isUnavailable; };
    ASSERT_TRUE(QTest::qWaitFor(isUnavailable));
    // More than once: on a busy machine it may miss its time again.
    EXPECT_TRUE(QTest::qWaitFor(
        [&] {
            view.goTo(1);
            view.goTo(0);
            return QTest::qWaitFor([&] { return !isUnavailable(); }, 2000);
        },
        60000));
    EXPECT_FALSE(view.pictures().picture(0).pixmap.isNull());
}

TEST_F(PDFViewTest, NotifiesOfScaleChangesAndKeepsAFixedScale) {
    view.setDocument(PdfBuilder().page("/MediaBox [0 0 100 100]").document());
    QSignalSpy changes(&view, &PDFView::scaleChanged);
    view.resize(300, 300);
    EXPECT_EQ(changes.size(), 1);
    EXPECT_NEAR(view.scaleFactor(), 2.84, 1e-9);
    view.setScaleFactor(1.5);
    EXPECT_EQ(changes.size(), 2);
    EXPECT_EQ(view.convertFromPage({0, 0, 100, 100}), (Rect{75, 75, 150, 150}));
    EXPECT_EQ(view.convertToPage({75, 75, 15, 30}), (Rect{0, 0, 10, 20}));
}
