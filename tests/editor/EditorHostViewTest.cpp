#include "editor/EditorHostView.h"
#include "preview/ProcessRenderer.h"
#include "tests/editor/EditorTestSupport.h"
#include "tests/support/GTestQt.h"
#include "tests/support/TestPdf.h"

#include <QTest>

using namespace vellmora;
using namespace vellmora::test;

namespace {

class EditorHostViewTest : public testing::Test {
protected:
    EditorHostViewTest() {
        host.resize(616, 858);  // a page of 595 × 842 points fits with its margin at a scale of 1
        host.show();
        host.stampsByPage = [this] { return stamps; };
        host.onPageChanged = [this](qsizetype page) { shownPages.append(page); };
        host.onStampChanged = [this](const StampItem& stamp) { changed.append(stamp); };
        host.setDocument(document);
    }
    void show(const StampsByPage& newStamps) {
        stamps = newStamps;
        host.syncStampViews();
    }
    QList<InteractiveStampView*> views() {
        QList<InteractiveStampView*> visible;
        for (auto* view : host.overlayContainer().findChildren<InteractiveStampView*>()) {
            if (view->isVisible())
                visible.append(view);
        }
        return visible;
    }

    ProcessRenderer renderer{QStringLiteral(VELLMORA_RENDERER)};
    EditorHostView host{renderer, nullptr};
    std::shared_ptr<const PDFDocument> document = pages(3).document();
    StampsByPage stamps;
    QList<qsizetype> shownPages;
    QList<StampItem> changed;
};

}  // namespace

TEST_F(EditorHostViewTest, LaysStampsOverTheirPlaceOnThePageInWholePoints) {
    const StampItem stamp = stampAt({100.4, 200.6, 50, 25});
    show({{0, {stamp}}, {1, {stampAt({0, 0, 10, 10}, 1)}}});
    ASSERT_EQ(views().size(), 1) << "stamps of other pages have no view";
    const Rect mapped = host.pdfView().convertFromPage(stamp.rect);
    EXPECT_EQ(host.stampView(stamp.id)->place(), mapped);
    EXPECT_EQ(host.stampView(stamp.id)->geometry(), toQt(integral(mapped), host.height()).toRect());
    EXPECT_NEAR(mapped.x - host.pdfView().convertFromPage({0, 0, 1, 1}).x, 100.4, 0.2);
}

TEST_F(EditorHostViewTest, ReusesViewsAndRemovesThoseWhoseStampIsGone) {
    const StampItem a = stampAt({10, 10, 40, 20});
    const StampItem b = stampAt({20, 10, 40, 20});
    show({{0, {a, b}}});
    InteractiveStampView* viewOfA = host.stampView(a.id);
    EXPECT_EQ(views(), (QList<InteractiveStampView*>{viewOfA, host.stampView(b.id)}))
        << "later ones lie on top";
    show({{0, {a}}});
    EXPECT_EQ(views(), QList<InteractiveStampView*>{viewOfA});
    host.displayPage(1);
    EXPECT_TRUE(views().isEmpty());
    host.setDocument(nullptr);
    host.setDocument(document);
    EXPECT_EQ(views().size(), 1);
    host.setDocument(nullptr);
    EXPECT_TRUE(views().isEmpty());
}

TEST_F(EditorHostViewTest, ShowsPagesOfTheDocumentOnlyAndNotTwice) {
    EXPECT_EQ(shownPages, QList<qsizetype>{0});
    host.displayPage(2);
    host.displayPage(2);
    host.displayPage(3);
    host.displayPage(-1);
    EXPECT_EQ(shownPages, (QList<qsizetype>{0, 2}));
    host.setDocument(document);
    EXPECT_EQ(host.currentPageIndex(), 2) << "the same document again changes nothing";
}

TEST_F(EditorHostViewTest, ShowsAnotherDocumentFittedHoweverTheLastWasZoomed) {
    const double fitting = host.pdfView().scaleFactor();
    host.pdfView().setScaleFactor(fitting * 3);
    host.setDocument(pages(1).document());
    EXPECT_EQ(host.pdfView().scaleFactor(), fitting);
    EXPECT_EQ(host.pdfView().scrollOffset(), (Point{0, 0}));
}

TEST_F(EditorHostViewTest, FollowsTheScale) {
    const StampItem stamp = stampAt({100, 200, 50, 25});
    show({{0, {stamp}}});
    for (const QSize size : {QSize(400, 500), QSize(1300, 1800)}) {
        host.resize(size);
        EXPECT_EQ(host.overlayContainer().size(), size);
        EXPECT_EQ(host.stampView(stamp.id)->place(), host.pdfView().convertFromPage(stamp.rect));
    }
}

TEST_F(EditorHostViewTest, ADragIsReportedInPageSpaceAndKeepsItsPlaceMeanwhile) {
    const StampItem stamp = stampAt({100, 200, 50, 25});
    show({{0, {stamp}}});
    InteractiveStampView& view = *host.stampView(stamp.id);
    const Rect before = view.place();
    sendMouse(view, QEvent::MouseButtonPress, {10, 10});
    sendMouse(view, QEvent::MouseMove, {40, 10});
    show({{0, {stamp}}});
    EXPECT_TRUE(isNear(view.place(), before.translated(30, 0), 1e-9)) << "a refresh does not pull it back";
    ASSERT_EQ(changed.size(), 1);
    EXPECT_EQ(changed[0].id, stamp.id);
    EXPECT_EQ(changed[0].imageData.constData(), stamp.imageData.constData());
    EXPECT_TRUE(isNear(changed[0].rect, host.pdfView().convertToPage(view.place()), 1e-9));
    sendMouse(view, QEvent::MouseButtonRelease, {10, 10});
    show({{0, {stamp}}});
    EXPECT_EQ(view.place(), before);
}

TEST_F(EditorHostViewTest, MarksTheSelectedStampAndForwardsClicks) {
    const StampItem a = stampAt({10, 10, 40, 20});
    const StampItem b = stampAt({100, 10, 40, 20});
    show({{0, {a, b}}});
    host.setSelectedStampID(b.id);
    EXPECT_TRUE(host.stampView(b.id)->isSelectedStamp());
    EXPECT_FALSE(host.stampView(a.id)->isSelectedStamp());
    std::optional<QUuid> selected;
    host.onStampSelected = [&](const auto& id) { selected = id; };
    QTest::mouseClick(host.stampView(a.id), Qt::LeftButton);
    EXPECT_EQ(selected, a.id);
}

TEST_F(EditorHostViewTest, WhatNoStampTakesGoesToThePage) {
    const StampItem stamp = stampAt({100, 200, 50, 25});
    show({{0, {stamp}}});
    QTest::mouseClick(host.stampView(stamp.id), Qt::LeftButton);
    QTest::keyClick(host.stampView(stamp.id), Qt::Key_PageDown);
    EXPECT_EQ(host.currentPageIndex(), 1) << "page keys work from a selected stamp";
    QWheelEvent wheel({10, 10}, host.overlayContainer().mapToGlobal(QPointF(10, 10)), {}, {0, -120},
                      Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QSpontaneKeyEvent::setSpontaneous(
        &wheel);  // only what comes from the window system is passed on to parents
    qApp->notify(&host.overlayContainer(), &wheel);
    EXPECT_EQ(host.currentPageIndex(), 2);
}
