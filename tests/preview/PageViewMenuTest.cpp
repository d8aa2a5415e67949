#include "preview/PDFView.h"
#include "preview/PDFViewAccessible.h"
#include "preview/ProcessRenderer.h"
#include "tests/support/GTestQt.h"
#include "tests/support/TestPdf.h"

#include <functional>

#include <QAccessible>
#include <QApplication>
#include <QContextMenuEvent>
#include <QMenu>
#include <QTest>
#include <QTimer>

using namespace vellmora;
using namespace vellmora::test;

namespace {

/// The menu runs an event loop of its own: it is looked at and left from within.
class PageViewMenuTest : public testing::Test {
protected:
    static void SetUpTestSuite() { installPageViewAccessibility(); }
    PageViewMenuTest() {
        view.resize(600, 800);
        view.setAutoScales(true);
        view.setDocument(pages(3).document());
        view.show();
    }

    /// Opens the menu and chooses an entry; an empty label closes it. Gives the enabled entries as an
    /// assistive tool finds them beneath the view.
    QStringList choose(const std::function<void()>& open, const char* label) {
        QStringList entries;
        QTimer::singleShot(0, &view, [&] {
            auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
            if (!menu)
                return;
            entries = entriesBeneathView();
            for (QAction* action : menu->actions()) {
                if (action->text() == QString::fromUtf8(label))
                    action->trigger();
            }
            menu->close();
        });
        open();
        return entries;
    }
    QStringList entriesBeneathView() {
        QStringList names;
        QAccessibleInterface* page = QAccessible::queryAccessibleInterface(&view);
        for (int i = 0; i < page->childCount(); ++i) {
            QAccessibleInterface* menu = page->child(i);
            if (menu->role() != QAccessible::PopupMenu)
                continue;
            EXPECT_EQ(page->indexOfChild(menu), i);
            for (int entry = 0; entry < menu->childCount(); ++entry) {
                QAccessibleInterface* item = menu->child(entry);
                if (item->role() == QAccessible::MenuItem && !item->state().disabled)
                    names.append(item->text(QAccessible::Name));
            }
        }
        return names;
    }

    ProcessRenderer renderer{QStringLiteral(VELLMORA_RENDERER)};
    PDFView view{renderer, nullptr};
};

}  // namespace

TEST_F(PageViewMenuTest, OpensWithMouseAndKeysAndDoesWhatItSays) {
    const auto withMouse = [&] {
        QContextMenuEvent event(QContextMenuEvent::Mouse, {300, 400}, view.mapToGlobal(QPoint(300, 400)));
        QCoreApplication::sendEvent(&view, &event);
    };
    const auto withKeys = [&] { QTest::keyClick(&view, Qt::Key_F10, Qt::ShiftModifier); };
    const QString larger = QStringLiteral("Größer");
    const QString smaller = QStringLiteral("Kleiner");
    const QString next = QStringLiteral("Nächste Seite");
    const QString previous = QStringLiteral("Vorherige Seite");
    EXPECT_EQ(choose(withMouse, "Nächste Seite"), (QStringList{larger, smaller, next}));
    EXPECT_EQ(view.currentPageIndex(), 1);
    const double fitting = view.scaleFactor();
    EXPECT_EQ(choose(withKeys, "Größer"), (QStringList{larger, smaller, next, previous}));
    EXPECT_NEAR(view.scaleFactor(), fitting * 1.25, 1e-9);
    EXPECT_EQ(choose(withKeys, "Einpassen"),
              (QStringList{QStringLiteral("Einpassen"), larger, smaller, next, previous}));
    EXPECT_EQ(view.scaleFactor(), fitting);
    EXPECT_EQ(entriesBeneathView(), QStringList()) << "the menu is closed";
}

TEST_F(PageViewMenuTest, TellsAssistiveToolsWhichPageIsOnScreenAndThatItCannotBeShown) {
    ProcessRenderer broken{QStringLiteral("/does/not/exist")};
    PDFView unlucky(broken, nullptr);
    const auto description = [&] {
        return QAccessible::queryAccessibleInterface(&unlucky)->text(QAccessible::Description);
    };
    EXPECT_EQ(description(), QString());
    unlucky.resize(600, 800);
    unlucky.setDocument(pages(3).document());
    unlucky.goTo(1);
    EXPECT_EQ(description(), QStringLiteral("Seite 2 von 3"));
    unlucky.grab();
    EXPECT_TRUE(QTest::qWaitFor([&] { return description().contains(QStringLiteral("startet nicht")); }));
}
