#include "app/ContentWindow.h"
#include "base/SystemColors.h"
#include "preview/ProcessRenderer.h"
#include "tests/editor/EditorTestSupport.h"
#include "tests/support/EventLoop.h"
#include "tests/support/GTestQt.h"
#include "tests/support/TestDocuments.h"
#include "tests/support/TestPdf.h"
#include "tests/support/TestWorkspace.h"

#include <QScrollBar>
#include <QTest>

using namespace vellmora;
using namespace vellmora::test;

namespace {

constexpr auto control = Qt::ControlModifier;
constexpr auto shift = Qt::ShiftModifier;

/// The real window on a real library. Keys go to whatever has the focus.
class KeyboardTest : public testing::Test {
protected:
    KeyboardTest() {
        writeFile(workspace.path(QStringLiteral("Vertrag.pdf")), pages(3).bytes());
        writeFile(workspace.path(QStringLiteral("Siegel.png")), plainPng(40, 20, Qt::red));
        window().resize(1180, 700);
        window().show();
        window().activateWindow();
        if (!QTest::qWaitForWindowActive(&window()))
            qFatal("the window does not become active");
        settle();
    }
    ContentView& content() { return shown.content(); }
    QWidget& window() { return shown.window(); }
    PDFView& page() { return shown.editor()->pdfView(); }

    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier, int times = 1) {
        for (int i = 0; i < times; ++i) {
            QWidget* target = window().focusWidget();
            QTest::keyClick(target ? target : &window(), key, modifiers);
            settle();
        }
    }
    void open() {
        workspace.panels.answer = workspace.url(QStringLiteral("Vertrag.pdf"));
        press(Qt::Key_O, control);
    }
    QPushButton& button(const char* label) {
        for (auto* candidate : window().findChildren<QPushButton*>()) {
            if (candidate->text() == QString::fromUtf8(label))
                return *candidate;
        }
        qFatal("no button %s", label);
    }
    void tabTo(const QWidget& widget) {
        constexpr int enough = 60;
        for (int i = 0; i < enough && !widget.hasFocus(); ++i)
            press(Qt::Key_Tab);
        ASSERT_TRUE(widget.hasFocus());
    }
    void insertByKey() {
        tabTo(button("Stempel auf aktueller Seite"));
        press(Qt::Key_Space);
    }
    StampItem stamp(qsizetype onPage = 0) { return content().stampsByPage.value().value(onPage).last(); }
    InteractiveStampView* stampView() { return shown.editor()->stampView(stamp().id); }
    bool pageHasFocus() { return QApplication::focusWidget() == &page(); }

    TestWorkspace workspace;
    ProcessRenderer renderer{QStringLiteral(VELLMORA_RENDERER)};
    ContentWindow shown{
        std::make_unique<ContentView>(workspace.makeLibrary(), workspace.panels, documentProcesses()),
        renderer, Theme(SystemFonts::load())};
};

}  // namespace

TEST_F(KeyboardTest, DoesTheWholeJob) {
    open();
    EXPECT_TRUE(pageHasFocus());
    workspace.panels.answer = workspace.url(QStringLiteral("Siegel.png"));
    press(Qt::Key_I, control);
    EXPECT_EQ(content().statusText.value(), QStringLiteral("Stempel importiert: Siegel"));
    insertByKey();
    ASSERT_EQ(content().totalStampCount(), 1);
    EXPECT_TRUE(stampView()->hasFocus());
    const Rect placed = stamp().rect;
    press(Qt::Key_Right, shift, 3);
    press(Qt::Key_Down);
    press(Qt::Key_Left, control, 2);
    EXPECT_EQ(stamp().rect.x, placed.x + 30);
    EXPECT_EQ(stamp().rect.y, placed.y - 1);
    EXPECT_NEAR(stamp().rect.width, placed.width - 2, 1e-9);
    press(Qt::Key_S, control);
    EXPECT_EQ(content().statusText.value(), QStringLiteral("Original überschrieben: Vertrag.pdf"));
    EXPECT_TRUE(stampView()->hasFocus());
    press(Qt::Key_PageDown);
    EXPECT_EQ(content().pageDisplayText(), QStringLiteral("2 / 3"));
    EXPECT_TRUE(pageHasFocus());
    insertByKey();
    EXPECT_EQ(content().totalStampCount(), 2);
    press(Qt::Key_Delete);
    EXPECT_EQ(content().totalStampCount(), 1);
    EXPECT_EQ(content().statusText.value(), QStringLiteral("Ausgewählter Stempel gelöscht."));
    EXPECT_EQ(content().selectedStampID.value(), std::nullopt);
    EXPECT_TRUE(pageHasFocus());
    press(Qt::Key_PageUp);
    EXPECT_EQ(content().pageDisplayText(), QStringLiteral("1 / 3"));
    press(Qt::Key_Tab);
    EXPECT_EQ(content().selectedStampID.value(), stamp().id);
    press(Qt::Key_Escape);
    EXPECT_EQ(content().selectedStampID.value(), std::nullopt);
    EXPECT_TRUE(pageHasFocus());
}

TEST_F(KeyboardTest, StaysWithThePageWhateverTheMouseDoes) {
    open();
    QTest::mouseClick(&button("Stempel auf aktueller Seite"), Qt::LeftButton);
    settle();
    EXPECT_TRUE(stampView()->hasFocus()) << "a stamp that was inserted";
    drag(*stampView(), {20, 10}, 60, 40);
    press(Qt::Key_PageDown);
    EXPECT_TRUE(pageHasFocus()) << "a page was turned, and its stamp is out of sight";
    press(Qt::Key_PageUp);
    QTest::mouseClick(stampView(), Qt::LeftButton);
    settle();
    EXPECT_TRUE(stampView()->hasFocus());
    QTest::mouseClick(&button("Ausgewählten löschen"), Qt::LeftButton);
    settle();
    EXPECT_TRUE(pageHasFocus()) << "a stamp was deleted";
    PresetTile& tile = *window().findChild<PresetTile*>();
    QTest::mouseClick(&tile, Qt::LeftButton, {}, {60, 60});
    QTest::mouseDClick(&tile, Qt::LeftButton, {}, {60, 60});
    settle();
    EXPECT_TRUE(stampView()->hasFocus());
    content().removePreset(*stamp().presetID);
    settle();
    EXPECT_TRUE(pageHasFocus()) << "the entry of the stamp was removed";
}

TEST_F(KeyboardTest, AControlThatDidItsWorkHandsTheFocusToThePage) {
    open();
    insertByKey();
    tabTo(button("Ausgewählten löschen"));
    press(Qt::Key_Space);
    EXPECT_EQ(content().totalStampCount(), 0);
    EXPECT_TRUE(pageHasFocus()) << "a button that is disabled now";
    tabTo(button("PNG hinzufügen"));
    open();
    EXPECT_TRUE(pageHasFocus()) << "any document, not just the first";
    tabTo(button("PDF öffnen"));
    workspace.panels.answer = std::nullopt;
    press(Qt::Key_Space);
    EXPECT_TRUE(button("PDF öffnen").hasFocus()) << "nothing was opened";
    workspace.panels.answer = workspace.url(QStringLiteral("Vertrag.pdf"));
    press(Qt::Key_Space);
    EXPECT_TRUE(pageHasFocus());
}

TEST_F(KeyboardTest, ADocumentThatTookLongToOpenGetsTheFocusAsWell) {
    open();
    tabTo(button("PDF öffnen"));
    const auto takesLong = QObject::connect(&content(), &ContentView::willWork, &content(),
                                            [this] { Q_EMIT content().worksLong(); });
    press(Qt::Key_S, control);
    EXPECT_TRUE(button("PDF öffnen").hasFocus()) << "a save leaves it where it was";
    open();
    EXPECT_TRUE(pageHasFocus());
    QObject::disconnect(takesLong);
}

TEST_F(KeyboardTest, TheFocusIsShownWhereAKeyMovedIt) {
    const auto hasRing = [&] {
        return isClose(page().grab().toImage().pixelColor(1, page().height() / 2), colors::systemBlue);
    };
    open();
    EXPECT_TRUE(hasRing());
    QTest::mouseClick(&page(), Qt::LeftButton);
    QTest::mouseClick(&button("Stempel auf aktueller Seite"), Qt::LeftButton);
    settle();
    QTest::mouseClick(&button("Ausgewählten löschen"), Qt::LeftButton);
    settle();
    EXPECT_TRUE(pageHasFocus());
    EXPECT_FALSE(hasRing());
}

TEST_F(KeyboardTest, WhatGetsTheFocusIsInSight) {
    for (int i = 0; i < 20; ++i) {
        workspace.panels.answer = workspace.url(QStringLiteral("Siegel.png"));
        press(Qt::Key_I, control);
    }
    open();
    Sidebar& sidebar = shown.window().sidebar();
    const auto isInSight = [&](QWidget& widget) {
        const QRect place(widget.mapTo(&window(), QPoint(0, 0)), widget.size());
        const QRect column(sidebar.mapTo(&window(), QPoint(0, 0)), sidebar.size());
        return (sidebar.isAncestorOf(&widget) ? column : window().rect()).contains(place);
    };
    int inSidebar = 0;
    for (const Qt::Key key : {Qt::Key_Tab, Qt::Key_Backtab}) {
        sidebar.verticalScrollBar()->setValue(0);
        page().setFocus();
        for (int i = 0; i < 40; ++i) {
            press(key);
            QWidget* focused = QApplication::focusWidget();
            ASSERT_TRUE(focused);
            EXPECT_TRUE(isInSight(*focused)) << focused->accessibleName().toStdString();
            inSidebar += sidebar.isAncestorOf(focused);
        }
    }
    EXPECT_GT(inSidebar, 20);
}

/// A click must not move away what it is about to press.
TEST_F(KeyboardTest, AClickScrollsNothing) {
    Sidebar& sidebar = shown.window().sidebar();
    button("Einfügen").setFocus(Qt::TabFocusReason);
    PresetTile& tile = *window().findChild<PresetTile*>();
    const int top = tile.mapTo(sidebar.widget(), QPoint(0, 0)).y();
    sidebar.verticalScrollBar()->setValue(top + 60 - sidebar.viewport()->height());
    settle();
    const int before = sidebar.verticalScrollBar()->value();
    const QPoint point = tile.mapTo(&window(), QPoint(30, 20));
    QTest::mouseClick(window().windowHandle(), Qt::LeftButton, {}, point);
    settle();
    EXPECT_TRUE(tile.hasFocus());
    EXPECT_EQ(sidebar.verticalScrollBar()->value(), before);
}
