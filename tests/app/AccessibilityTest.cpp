#include "app/ContentWindow.h"
#include "editor/StampViewAccessible.h"
#include "preview/PDFViewAccessible.h"
#include "preview/ProcessRenderer.h"
#include "tests/editor/EditorTestSupport.h"
#include "tests/support/AccessibilityRecord.h"
#include "tests/support/EventLoop.h"
#include "tests/support/GTestQt.h"
#include "tests/support/TestDocuments.h"
#include "tests/support/TestPdf.h"
#include "tests/support/TestWorkspace.h"
#include "ui/Accessibility.h"

#include <cstdio>

#include <QPushButton>
#include <QTest>

using namespace vellmora;
using namespace vellmora::test;

namespace {

using Kind = AccessibilityRecord::Kind;

/// The main job as somebody does it who hears the window. After each step the tree is looked at, and what was
/// told. VELLMORA_ACCESSIBILITY_RECORD names a file that gets both.
class AccessibilityTest : public testing::Test {
protected:
    static void SetUpTestSuite() {
        installAccessibility();
        installStampViewAccessibility();
        installPageViewAccessibility();
    }
    AccessibilityTest() {
        writeFile(workspace.path(QStringLiteral("Vertrag.pdf")), pages(3).bytes());
        writeFile(workspace.path(QStringLiteral("kein Bild.png")), "no picture");
        shown = std::make_unique<ContentWindow>(
            std::make_unique<ContentView>(workspace.makeLibrary(), workspace.panels, documentProcesses()),
            renderer, Theme(SystemFonts::load()));
        shown->window().show();
        shown->window().activateWindow();
        if (!QTest::qWaitForWindowActive(&shown->window()))
            qFatal("the window does not become active");
        settle();
        record.clear();
    }
    void SetUp() override {
        if (!AccessibilityRecord::canListen())
            GTEST_SKIP() << "built without Qt's private headers";
    }
    void TearDown() override {
        const QString path = qEnvironmentVariable("VELLMORA_ACCESSIBILITY_RECORD");
        if (!path.isEmpty() && !protocol.isEmpty())
            writeFile(path, protocol.toUtf8());
    }

    /// Does something of which this is to be heard, as an announcement or with the focus.
    void step(const char* title, const std::function<void()>& act, const QStringList& heard) {
        SCOPED_TRACE(title);
        record.clear();
        act();
        settle();
        protocol += QStringLiteral("%1\n  told:\n%2  tree:\n%3\n")
                        .arg(QString::fromUtf8(title), record.lines(), AccessibilityRecord::tree(root()));
        for (const QString& text : heard)
            EXPECT_TRUE(wasHeard(text)) << text.toStdString() << " is not heard, but\n"
                                        << record.lines().toStdString();
        EXPECT_EQ(AccessibilityRecord::faults(root()), QStringList());
        checkFocus();
    }
    bool wasHeard(const QString& text) const {
        return std::any_of(record.events().begin(), record.events().end(), [&](const auto& event) {
            const bool isSpoken = event.kind == Kind::announcement || event.kind == Kind::focus ||
                                  event.kind == Kind::selection;
            return isSpoken && (event.name + QStringLiteral(", ") + event.text).contains(text);
        });
    }
    /// Whatever got the focus had a name, and what has it now can be seen.
    void checkFocus() {
        for (const AccessibilityRecord::Event& event : record.events())
            EXPECT_FALSE(event.kind == Kind::focus && event.name.isEmpty()) << "a focus without a name";
        QWidget* focused = QApplication::focusWidget();
        ASSERT_TRUE(focused) << "nothing has the focus";
        EXPECT_FALSE(focused->visibleRegion().isEmpty()) << "the focus cannot be seen";
        EXPECT_NE(spoken(*focused), QString());
    }
    static QString spoken(QWidget& widget) {
        return QAccessible::queryAccessibleInterface(&widget)->text(QAccessible::Name);
    }
    QAccessibleInterface* root() { return QAccessible::queryAccessibleInterface(&shown->window()); }
    ContentView& content() { return shown->content(); }
    PresetGrid& grid() { return *shown->window().findChild<PresetGrid*>(); }
    StampItem stamp() const { return shown->content().stampsByPage.value().value(0).first(); }
    static void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(QApplication::focusWidget(), key, modifiers);
    }
    void choose(const char* label) {
        for (auto* button : shown->window().findChildren<QPushButton*>()) {
            if (button->text() == QString::fromUtf8(label))
                return QTest::mouseClick(button, Qt::LeftButton);
        }
        FAIL() << "no button " << label;
    }
    static QString placeOf(const StampItem& stamp) {
        return QStringLiteral("%1 Punkt von links, %2 Punkt von unten")
            .arg(qRound(stamp.rect.x))
            .arg(qRound(stamp.rect.y));
    }

    TestWorkspace workspace;
    ProcessRenderer renderer{QStringLiteral(VELLMORA_RENDERER)};
    AccessibilityRecord record;
    std::unique_ptr<ContentWindow> shown;
    QString protocol;
};

}  // namespace

TEST_F(AccessibilityTest, EachStepOfTheMainJobIsHeard) {
    workspace.panels.answer = workspace.url(QStringLiteral("Vertrag.pdf"));
    step("Open", [] { press(Qt::Key_O, Qt::ControlModifier); }, {QStringLiteral("PDF geladen: Vertrag.pdf")});
    step("Go to an entry of the library", [&] { grid().focusTile(2); }, {QStringLiteral("Erledigt")});
    step("Select it", [] { press(Qt::Key_Space); }, {QStringLiteral("Erledigt")});
    step("Insert it", [] { press(Qt::Key_Return); },
         {QStringLiteral("Stempel auf Seite 1 eingefügt: Erledigt"), QStringLiteral("Stempel Erledigt"),
          QStringLiteral("Seite 1, 214 Punkt von links")});
    ASSERT_EQ(content().totalStampCount(), 1);
    step("Drag it", [&] { drag(*shown->editor()->stampView(stamp().id), {20, 10}, 60, 40); }, {});
    EXPECT_TRUE(wasHeard(placeOf(stamp())));
    EXPECT_EQ(record.announcements().size(), 1) << "at the end, and only then";
    const auto moveByKey = [&] {
        QWidget* focused = QApplication::focusWidget();
        for (int i = 0; i < 5; ++i)
            QTest::keyPress(focused, Qt::Key_Right);
        settle();
        EXPECT_EQ(record.announcements(), QStringList()) << "not while the key is held";
        QTest::keyRelease(focused, Qt::Key_Right);
    };
    const double before = stamp().rect.x;
    step("Move it by a key", moveByKey, {});
    EXPECT_DOUBLE_EQ(stamp().rect.x, before + 5);
    EXPECT_TRUE(wasHeard(placeOf(stamp())));
    EXPECT_EQ(record.announcements().size(), 1);
    step("Turn the page",
         [&] {
             shown->editor()->focusPage(Qt::TabFocusReason);
             press(Qt::Key_PageDown);
         },
         {QStringLiteral("Seite 2 von 3")});
    step("Delete what lies on the other page", [&] { choose("Ausgewählten löschen"); },
         {QStringLiteral("Seite 1 von 3"), QStringLiteral("Ausgewählter Stempel gelöscht.")});
    EXPECT_EQ(content().currentPageIndex.value(), 0);
    const auto save = [] { press(Qt::Key_S, Qt::ControlModifier); };
    step("Save", save, {QStringLiteral("Original überschrieben: Vertrag.pdf")});
    step("Save once more", save, {QStringLiteral("Original überschrieben: Vertrag.pdf")});
    workspace.panels.answer = workspace.url(QStringLiteral("kein Bild.png"));
    step("Import what is no picture", [] { press(Qt::Key_I, Qt::ControlModifier); },
         {QStringLiteral("Stempel konnte nicht importiert werden: ")});
    const QString next = grid().presets().value(2).displayName;
    step("Delete an entry of the library",
         [&] {
             grid().focusTile(1);
             press(Qt::Key_Delete);
         },
         {QStringLiteral("Stempel aus Bibliothek entfernt."), next});
    EXPECT_EQ(spoken(*QApplication::focusWidget()), next);
}

TEST_F(AccessibilityTest, AStepThatChangesNothingIsSilent) {
    content().loadPDF(workspace.url(QStringLiteral("Vertrag.pdf")));
    content().addStampToCurrentPage(content().stampLibrary().selectedPreset());
    settle();
    record.clear();
    InteractiveStampView& view = *shown->editor()->stampView(stamp().id);
    QTest::mouseClick(&view, Qt::LeftButton, {}, {20, 10});
    settle();
    QTest::keyClick(&view, Qt::Key_Shift);
    settle();
    EXPECT_EQ(record.announcements(), QStringList()) << "it was selected before, and is where it was";
}

TEST_F(AccessibilityTest, FiguresHaveTheirTitlesAndButtonsTheirKeys) {
    const auto labelOf = [&](const char* value) {
        for (auto* label : shown->window().findChildren<TextLabel*>()) {
            if (label->text() != QString::fromUtf8(value))
                continue;
            const auto relations =
                QAccessible::queryAccessibleInterface(label)->relations(QAccessible::Label);
            if (!relations.isEmpty())
                return relations.first().first->text(QAccessible::Name);
        }
        return QString();
    };
    EXPECT_EQ(labelOf("–"), QStringLiteral("Seite"));
    EXPECT_EQ(labelOf("5"), QStringLiteral("Bibliothek"));
    EXPECT_EQ(labelOf("Application Support"), QStringLiteral("Speicherort"));
    QStringList keys;
    QStringList toolTips;
    for (auto* button : shown->window().commandBar().findChildren<Button*>()) {
        QAccessibleInterface* known = QAccessible::queryAccessibleInterface(button);
        keys += known->actionInterface()->keyBindingsForAction(QAccessibleActionInterface::pressAction());
        if (!button->toolTip().isEmpty())
            toolTips.append(button->toolTip());
        EXPECT_EQ(known->text(QAccessible::Accelerator).isEmpty(), button->toolTip().isEmpty());
    }
    EXPECT_EQ(keys, (QStringList{QStringLiteral("Ctrl+O"), QStringLiteral("Ctrl+I"), QStringLiteral("Ctrl+S"),
                                 QStringLiteral("Ctrl+Shift+S")}));
    ASSERT_EQ(toolTips.size(), 4);
    EXPECT_TRUE(toolTips.first().contains(QStringLiteral("PDF öffnen (Ctrl+O)")));
    for (auto* tile : shown->window().findChildren<PresetTile*>())
        EXPECT_TRUE(tile->deleteButton().toolTip().contains(QStringLiteral(" löschen")));
}

/// What the Tab key leads to is named, in sight, and looks different from when it has not the focus.
TEST_F(AccessibilityTest, EveryStopOfTheTabKeyIsNamedAndSeen) {
    content().loadPDF(workspace.url(QStringLiteral("Vertrag.pdf")));
    content().addStampToCurrentPage(content().stampLibrary().selectedPreset());
    settle();
    QSet<QWidget*> stops;
    for (int i = 0; i < 60; ++i) {
        press(Qt::Key_Tab);
        settle();
        QWidget* focused = QApplication::focusWidget();
        ASSERT_TRUE(focused);
        if (stops.contains(focused))
            break;
        stops.insert(focused);
        SCOPED_TRACE(spoken(*focused).toStdString());
        EXPECT_NE(spoken(*focused), QString());
        EXPECT_EQ(focused->visibleRegion().boundingRect(), focused->rect()) << "in sight";
        const QImage with = focused->grab().toImage();
        focused->clearFocus();
        const QImage without = focused->grab().toImage();
        focused->setFocus(Qt::TabFocusReason);
        EXPECT_NE(with, without) << "the focus is seen";
    }
    EXPECT_GT(stops.size(), 10);
}
