#include "tests/support/EventLoop.h"
#include "tests/support/GTestQt.h"
#include "tests/ui/WindowFixture.h"

#include <atomic>

#include <QAccessible>
#include <QScrollBar>
#include <QSemaphore>
#include <QTest>

using namespace vellmora;
using namespace vellmora::test;

namespace {

class PresetViewsTest : public WindowFixture {
protected:
    QList<PresetTile*> tiles() {
        QList<PresetTile*> shown;
        for (auto* tile : window.findChildren<PresetTile*>()) {
            if (tile->isVisibleTo(&window))
                shown.append(tile);
        }
        return shown;
    }
};

}  // namespace

TEST_F(PresetViewsTest, AClickSelectsAndADoubleClickInserts) {
    showLibrary(2, 1);
    QTest::mouseClick(tiles()[1], Qt::LeftButton, {}, {60, 60});
    QTest::mouseDClick(tiles()[1], Qt::LeftButton, {}, {60, 60});
    EXPECT_EQ(calls, (QStringList{QStringLiteral("select Stempel 1"), QStringLiteral("insert Stempel 1")}));
    calls.clear();
    QTest::mouseClick(&tiles()[0]->insertButton(), Qt::LeftButton);
    QTest::mouseClick(&tiles()[0]->deleteButton(), Qt::LeftButton);
    QTest::mouseClick(window.findChild<PresetRow*>(), Qt::LeftButton, {}, {20, 20});
    QTest::mouseClick(window.findChild<PresetRow*>()->findChild<Button*>(), Qt::LeftButton);
    EXPECT_EQ(calls, (QStringList{QStringLiteral("insert Stempel 0"), QStringLiteral("delete Stempel 0"),
                                  QStringLiteral("select Stempel 0"), QStringLiteral("insert Stempel 0")}));
}

TEST_F(PresetViewsTest, KeysActAsOnAnyList) {
    showLibrary(4, 0);
    tiles()[0]->setFocus(Qt::TabFocusReason);
    QTest::keyClick(tiles()[0], Qt::Key_Space);
    QTest::keyClick(tiles()[0], Qt::Key_Right);
    EXPECT_TRUE(tiles()[1]->hasFocus());
    QTest::keyClick(tiles()[1], Qt::Key_Down);
    EXPECT_TRUE(tiles()[3]->hasFocus());
    QTest::keyClick(tiles()[3], Qt::Key_Return);
    EXPECT_EQ(calls, (QStringList{QStringLiteral("select Stempel 0"), QStringLiteral("insert Stempel 3")}));
    QTest::keyClick(tiles()[3], Qt::Key_Delete);
    EXPECT_EQ(calls.last(), QStringLiteral("delete Stempel 3"));
}

TEST_F(PresetViewsTest, AssistiveToolsSeeOneItemForEachTile) {
    showLibrary(2, 0);
    QAccessibleInterface* tile = QAccessible::queryAccessibleInterface(tiles()[0]);
    EXPECT_EQ(tile->role(), QAccessible::ListItem);
    EXPECT_EQ(tile->text(QAccessible::Name), QStringLiteral("Stempel 0"));
    EXPECT_TRUE(tile->state().selected);
    EXPECT_FALSE(QAccessible::queryAccessibleInterface(tiles()[1])->state().selected);
    for (const QString& action : tile->actionInterface()->actionNames())
        tile->actionInterface()->doAction(action);
    EXPECT_EQ(calls, (QStringList{QStringLiteral("select Stempel 0"), QStringLiteral("insert Stempel 0"),
                                  QStringLiteral("delete Stempel 0")}));
    EXPECT_EQ(QAccessible::queryAccessibleInterface(&window)->role(), QAccessible::Window);
    QStringList names;
    for (auto* button : window.findChildren<Button*>())
        names.append(QAccessible::queryAccessibleInterface(button)->text(QAccessible::Name));
    EXPECT_EQ(names.size(), QSet<QString>(names.begin(), names.end()).size())
        << "no two buttons are called alike";
}

TEST_F(PresetViewsTest, ALargeLibraryMakesTilesAndDecodesPicturesInSightOnly) {
    showLibrary(2000, 0);
    EXPECT_LT(tiles().size(), 30);
    QTest::qWait(50);
    EXPECT_LE(decodes, tiles().size() + 1);
    QScrollBar& bar = *window.sidebar().verticalScrollBar();
    EXPECT_GT(bar.maximum(), 150000);
    bar.setValue(bar.maximum() / 2);
    settle();
    QList<PresetTile*> middle = tiles();
    ASSERT_LT(middle.size(), 30);
    EXPECT_EQ(middle.first()->preset().displayName, QStringLiteral("Stempel 0")) << "the Tab key leads to it";
    middle.removeFirst();
    EXPECT_GT(middle.first()->preset().displayName.mid(8).toInt(), 900);
    const auto isInSight = [&](PresetTile* tile) {
        return window.sidebar().viewport()->rect().intersects(
            {tile->mapTo(window.sidebar().viewport(), QPoint()), tile->size()});
    };
    EXPECT_GE(std::count_if(middle.begin(), middle.end(), isInSight), 8);
}

TEST_F(PresetViewsTest, ARefreshWithTheSameLibraryKeepsTheTilesAndDecodesNothing) {
    showLibrary(2, 0);
    constexpr int shownPictures = 3;  // the active stamp has one beside its tile's
    ASSERT_TRUE(QTest::qWaitFor([&] { return decodes == shownPictures; }));
    const QList<PresetTile*> before = tiles();
    window.sidebar().setFigures({QStringLiteral("1 / 1"), 5, 5, true});
    settle();
    EXPECT_EQ(tiles(), before);
    EXPECT_EQ(decodes, shownPictures);
}

TEST(ThumbnailsTest, APictureThatIsBeingLoadedIsNotLoadedAgain) {
    std::atomic<int> loads = 0;
    QSemaphore mayGoOn;
    {
        Thumbnails thumbnails(nullptr);
        const DeferredPicture source{QStringLiteral("version"), [&]() -> std::optional<Image> {
                                         ++loads;
                                         mayGoOn.acquire();
                                         return Image(plainImage(40, 20, Qt::red));
                                     }};
        const auto state = [&] { return thumbnails.thumbnail(source, {20, 20}).state; };
        EXPECT_EQ(state(), Thumbnails::State::loading);
        EXPECT_TRUE(QTest::qWaitFor([&] { return loads > 0; }));
        EXPECT_EQ(state(), Thumbnails::State::loading);
        mayGoOn.release(2);
        EXPECT_TRUE(QTest::qWaitFor([&] { return state() == Thumbnails::State::ready; }));
    }
    EXPECT_EQ(loads, 1);
}

/// The focus goes on from tile to tile as they go away, and scrolls each into sight.
TEST_F(PresetViewsTest, TilesMayGoAwayWhileOneOfThemHasTheFocus) {
    showLibrary(60, 0);
    for (const int count : {60, 40, 3, 60, 0}) {
        window.sidebar().verticalScrollBar()->setValue(count * 20);
        settle();
        tiles().last()->deleteButton().setFocus(Qt::TabFocusReason);
        showLibrary(count, 0);
        const QList<PresetTile*> shown = tiles();
        EXPECT_EQ(shown.isEmpty(), count == 0);
        EXPECT_LT(shown.size(), 30);
    }
}

/// Selecting a built-in stamp makes the box above grow; the tile that was clicked stays under the mouse.
TEST_F(PresetViewsTest, WhatIsUnderTheMouseStaysThereWhenABoxAboveGrows) {
    showLibrary(20, 0);
    QScrollBar& bar = *window.sidebar().verticalScrollBar();
    bar.setValue(300);
    settle();
    EXPECT_EQ(bar.value(), 300) << "scrolling itself is not undone";
    QWidget& viewport = *window.sidebar().viewport();
    const auto gridTop = [&] { return window.findChild<PresetGrid*>()->mapTo(&viewport, QPoint(0, 0)).y(); };
    QCursor::setPos(viewport.mapToGlobal(QPoint(100, 600)));
    if (QCursor::pos() != viewport.mapToGlobal(QPoint(100, 600)))
        GTEST_SKIP() << "this display has no mouse to set";
    const int before = gridTop();
    showLibrary(20, 3);
    EXPECT_EQ(gridTop(), before);
    EXPECT_GT(bar.value(), 300);
}
