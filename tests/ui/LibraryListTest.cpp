#include "tests/support/GTestQt.h"
#include "tests/ui/WindowFixture.h"

#include <algorithm>

#include <QAccessible>
#include <QMenu>
#include <QScrollBar>
#include <QTest>

using namespace vellmora;
using namespace vellmora::test;

namespace {

/// The library as it is used without a mouse, or with one that rests.
class LibraryListTest : public WindowFixture {
protected:
    PresetGrid& grid() { return *window.findChild<PresetGrid*>(); }
    RecentsBox& recents() { return *window.findChild<RecentsBox*>(); }
    QAccessibleInterface& list() { return *QAccessible::queryAccessibleInterface(&grid()); }
    PresetTile* tile(qsizetype index) { return grid().tile(index); }
    QStringList listedNames() {
        QStringList names;
        for (int i = 0; i < list().childCount(); ++i)
            names.append(list().child(i)->text(QAccessible::Name));
        return names;
    }
    /// In the order of their places on the screen.
    QStringList shownNames() {
        QList<PresetTile*> tiles = grid().findChildren<PresetTile*>();
        tiles.removeIf([&](const PresetTile* tile) {
            const qsizetype index = grid().indexOf(tile->preset().id);
            return index < 0 || this->tile(index) != tile;
        });
        const auto place = [](const PresetTile* tile) { return std::pair(tile->y(), tile->x()); };
        std::sort(tiles.begin(), tiles.end(), [&](auto* a, auto* b) { return place(a) < place(b); });
        QStringList names;
        for (const PresetTile* tile : tiles)
            names.append(tile->preset().displayName);
        return names;
    }
    QStringList recentNames() {
        QList<PresetRow*> rows = recents().findChildren<PresetRow*>();
        std::sort(rows.begin(), rows.end(), [](auto* a, auto* b) { return a->y() < b->y(); });
        QStringList names;
        for (const PresetRow* row : rows)
            names.append(row->preset().displayName);
        return names;
    }
    /// As when the entry was inserted: it comes first.
    void use(qsizetype index) {
        LibraryContent library = current;
        library.presets.move(index, 0);
        if (index < library.recentPresets.size())
            library.recentPresets.move(index, 0);
        show(library);
    }
    static void enter(QWidget& widget) {
        QEnterEvent event({5, 5}, {5, 5}, {5, 5});
        QApplication::sendEvent(&widget, &event);
    }
    static void leave(QWidget& widget) {
        QEvent event(QEvent::Leave);
        QApplication::sendEvent(&widget, &event);
    }
    bool isInSight(const QWidget& widget) {
        return !widget.isHidden() && widget.visibleRegion().boundingRect() == widget.rect();
    }
};

QStringList names(std::initializer_list<int> numbers) {
    QStringList names;
    for (const int number : numbers)
        names.append(QStringLiteral("Stempel %1").arg(number));
    return names;
}

}  // namespace

TEST_F(LibraryListTest, AssistiveToolsReachThousandsOfEntriesInTheirOrder) {
    showLibrary(3000, 0);
    ASSERT_EQ(list().childCount(), 3000);
    QStringList expected;
    for (const StampPreset& preset : current.presets)
        expected.append(preset.displayName);
    EXPECT_EQ(listedNames(), expected);
    EXPECT_LT(grid().findChildren<PresetTile*>().size(), 40);

    QAccessibleInterface* far = list().child(2500);
    EXPECT_EQ(far->role(), QAccessible::ListItem);
    EXPECT_TRUE(far->state().offscreen);
    EXPECT_EQ(far->parent(), &list());
    EXPECT_EQ(list().indexOfChild(far), 2500);
    EXPECT_EQ(list().indexOfChild(list().child(1)), 1);
    QAccessibleActionInterface* actions = far->actionInterface();
    for (const char* action : {"Auswählen", "Einfügen", "Löschen"})
        actions->doAction(QString::fromUtf8(action));
    EXPECT_EQ(calls,
              (QStringList{QStringLiteral("select Stempel 2500"), QStringLiteral("insert Stempel 2500"),
                           QStringLiteral("delete Stempel 2500")}));
    actions->doAction(QAccessibleActionInterface::setFocusAction());
    settle();
    ASSERT_TRUE(tile(2500));
    EXPECT_TRUE(tile(2500)->hasFocus());
    EXPECT_TRUE(isInSight(*tile(2500)));
    EXPECT_EQ(list().child(2500)->object(), tile(2500));
    showLibrary(2, 0);
    EXPECT_FALSE(far->isValid());
}

TEST_F(LibraryListTest, TheGridIsOneStopOfTheTabKeyAndArrowKeysGoOnInIt) {
    showLibrary(9, 2);
    QList<QWidget*> stops;
    QWidget* start = window.findChild<CommandBar*>()->findChild<Button*>();
    start->setFocus(Qt::TabFocusReason);
    do {
        stops.append(QApplication::focusWidget());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    } while (QApplication::focusWidget() != start && stops.size() < 50);
    EXPECT_EQ(std::count_if(stops.begin(), stops.end(), [&](QWidget* w) { return grid().isAncestorOf(w); }),
              1);
    EXPECT_EQ(stops.last(), tile(0)) << "the selected entry, below all else";
    const auto top = [&](QWidget* widget) { return widget->mapTo(&window, QPoint()).y(); };
    for (qsizetype i = 3; i < stops.size(); ++i)
        EXPECT_GE(top(stops[i]) + 60, top(stops[i - 1]))
            << "in reading order, stop " << i << ": " << stops[i]->accessibleName().toStdString();

    window.activateWindow();
    tile(0)->setFocus(Qt::TabFocusReason);
    const auto after = [&](Qt::Key key) {
        QTest::keyClick(QApplication::focusWidget(), key);
        settle();
        auto* focused = qobject_cast<PresetTile*>(QApplication::focusWidget());
        EXPECT_TRUE(focused && isInSight(*focused));
        return focused ? focused->preset().displayName : QString();
    };
    EXPECT_EQ(after(Qt::Key_Right), QStringLiteral("Stempel 1"));
    EXPECT_EQ(after(Qt::Key_Down), QStringLiteral("Stempel 3"));
    EXPECT_EQ(after(Qt::Key_End), QStringLiteral("Stempel 8"));
    EXPECT_EQ(after(Qt::Key_Right), QStringLiteral("Stempel 8"));
    EXPECT_EQ(after(Qt::Key_Up), QStringLiteral("Stempel 6"));
    EXPECT_EQ(after(Qt::Key_Left), QStringLiteral("Stempel 5"));
    start->setFocus(Qt::TabFocusReason);
    window.sidebar().verticalScrollBar()->setValue(0);
    settle();
    EXPECT_EQ(tile(5)->focusPolicy(), Qt::StrongFocus) << "the Tab key comes back to where one was";
    EXPECT_EQ(tile(0)->focusPolicy(), Qt::ClickFocus);
}

TEST_F(LibraryListTest, TheFocusStaysInTheGridWhenItsEntryIsDeletedOrMovesUp) {
    showLibrary(60, 0);
    grid().focusTile(40);
    settle();
    const QUuid used = current.presets[40].id;
    use(40);
    ASSERT_TRUE(tile(0) && tile(0)->hasFocus());
    EXPECT_EQ(tile(0)->preset().id, used);
    EXPECT_TRUE(isInSight(*tile(0)));
    LibraryContent library = current;
    library.presets.removeFirst();
    show(library);
    ASSERT_TRUE(tile(0));
    EXPECT_EQ(tile(0)->preset().displayName, QStringLiteral("Stempel 0"));
    EXPECT_TRUE(tile(0)->hasFocus());
    EXPECT_TRUE(tile(0)->showsFocus());
}

TEST_F(LibraryListTest, ATileHasAMenuWithWhatItsButtonsDo) {
    showLibrary(2, 1);
    const auto chosen = [&](QWidget* item, const char* text) {
        QTest::keyClick(item, Qt::Key_F10, Qt::ShiftModifier);
        auto* menu = item->findChild<QMenu*>();
        EXPECT_TRUE(menu && menu->isVisible());
        const QAccessibleInterface* shownItem = QAccessible::queryAccessibleInterface(item);
        EXPECT_EQ(shownItem->child(shownItem->childCount() - 1)->object(), menu);
        for (QAction* action : menu->actions()) {
            if (action->text() == QString::fromUtf8(text))
                action->trigger();
        }
        menu->close();
        settle();
        return calls.isEmpty() ? QString() : calls.takeLast();
    };
    EXPECT_EQ(chosen(tile(1), "Auswählen"), QStringLiteral("select Stempel 1"));
    EXPECT_EQ(chosen(tile(1), "Einfügen"), QStringLiteral("insert Stempel 1"));
    EXPECT_EQ(chosen(tile(1), "Löschen"), QStringLiteral("delete Stempel 1"));
    EXPECT_EQ(chosen(recents().findChild<PresetRow*>(), "Löschen"), QString());
}

TEST_F(LibraryListTest, ListsUnderThePointerAreSortedWhenItLeaves) {
    showLibrary(4, 3);
    enter(grid());
    use(2);
    EXPECT_EQ(shownNames(), names({0, 1, 2, 3}));
    EXPECT_EQ(listedNames(), shownNames());
    EXPECT_EQ(recentNames(), names({2, 0, 1})) << "the pointer is not there";
    LibraryContent library = current;
    library.presets.removeLast();
    library.selectedPresetID = library.presets.last().id;
    show(library);
    EXPECT_EQ(shownNames(), names({0, 1, 2})) << "what is gone is gone at once";
    EXPECT_TRUE(tile(1)->isSelected());
    leave(grid());
    EXPECT_EQ(shownNames(), names({2, 0, 1}));

    enter(recents());
    use(1);
    EXPECT_EQ(recentNames(), names({2, 0, 1}));
    leave(recents());
    settle();
    EXPECT_EQ(recentNames(), names({0, 2, 1}));
}

TEST_F(LibraryListTest, ANewEntryIsShownAtOnce) {
    showLibrary(3, 0);
    enter(grid());
    LibraryContent library = current;
    StampPreset imported;
    imported.displayName = QStringLiteral("Neu");
    library.presets.prepend(imported);
    show(library);
    EXPECT_EQ(shownNames(), QStringList{QStringLiteral("Neu")} + names({0, 1, 2}));
}

TEST_F(LibraryListTest, ASecondClickOnABinDeletesNothingElse) {
    showLibrary(3, 0);
    Button& bin = tile(0)->deleteButton();
    QTest::mouseClick(&bin, Qt::LeftButton);
    QTest::mouseDClick(&tile(1)->deleteButton(), Qt::LeftButton);
    EXPECT_EQ(calls, QStringList{QStringLiteral("delete Stempel 0")});
}

TEST_F(LibraryListTest, ARowKeepsTheFocusOfItsEntry) {
    showLibrary(4, 3);
    PresetRow* third = recents().findChildren<PresetRow*>().at(2);
    third->insertButton().setFocus(Qt::TabFocusReason);
    use(2);
    EXPECT_EQ(recentNames(), names({2, 0, 1}));
    ASSERT_TRUE(third->insertButton().hasFocus());
    EXPECT_EQ(third->preset().displayName, QStringLiteral("Stempel 2"));
}
