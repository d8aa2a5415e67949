#include "tests/support/EventLoop.h"
#include "tests/support/GTestQt.h"
#include "tests/ui/WindowFixture.h"
#include "ui/FirstPaint.h"

#include <array>
#include <atomic>

#include <QPainter>
#include <QSemaphore>
#include <QSignalSpy>
#include <QTest>
#include <QThreadPool>

using namespace vellmora;
using namespace vellmora::test;

namespace {

/// The window as it is built, measured against the figures that it is designed to.
class WindowLayoutTest : public WindowFixture {
protected:
    QRect inWindow(const QWidget& widget) const {
        return {widget.mapTo(&window, QPoint(0, 0)), widget.size()};
    }
    QRect inBox(const QWidget& widget) const {
        QWidget* box = widget.parentWidget();
        while (!qobject_cast<GroupBox*>(box))
            box = box->parentWidget();
        return {widget.mapTo(box, QPoint(0, 0)), widget.size()};
    }
    TextLabel& label(const char* text) {
        for (auto* candidate : window.findChildren<TextLabel*>()) {
            if (candidate->text() == QString::fromUtf8(text))
                return *candidate;
        }
        qFatal("no label %s", text);
    }
    QList<GroupBox*> boxes() {
        QList<GroupBox*> shown;
        for (auto* box : window.findChildren<GroupBox*>()) {
            if (box->isVisibleTo(&window))
                shown.append(box);
        }
        std::sort(shown.begin(), shown.end(), [](auto* a, auto* b) { return a->y() < b->y(); });
        return shown;
    }
};

}  // namespace

TEST_F(WindowLayoutTest, PartsLieWhereTheyShould) {
    EXPECT_EQ(window.minimumSize(), QSize(1220, 800));
    const QRect bar = inWindow(window.commandBar());
    EXPECT_EQ(bar, QRect(0, 0, 1220, 28 + 2 * 12));
    const QRect sidebar = inWindow(window.sidebar());
    EXPECT_EQ(sidebar.topLeft(), QPoint(0, bar.height() + 1)) << "a line of one point lies between";
    EXPECT_EQ(sidebar.width(), 330);
    EXPECT_EQ(inWindow(window.editorArea()), QRect(331, sidebar.top(), 1220 - 331, 800 - sidebar.top()));
    EXPECT_EQ(inWindow(*window.commandBar().findChildren<Button*>().first()).topLeft(), QPoint(12, 12));
}

TEST_F(WindowLayoutTest, FitsIntoSmallScreens) {
    window.fitInto({1920, 1080});
    EXPECT_EQ(window.minimumSize(), MainWindow::minimumContentSize);
    const QSize laptop(1280, 680);
    window.fitInto(laptop);
    window.resize(window.minimumSize());
    settle();
    EXPECT_EQ(window.width(), MainWindow::minimumContentSize.width());
    EXPECT_LT(window.height(), laptop.height());
    const QRect area = inWindow(window.editorArea());
    EXPECT_EQ(area.bottomRight(), window.rect().bottomRight());
    window.fitInto({200, 100});
    window.resize(1, 1);
    settle();
    EXPECT_GT(window.width(), window.commandBar().findChildren<Button*>().last()->geometry().right());
}

TEST_F(WindowLayoutTest, BoxesStandInOrderWithTheirPadding) {
    showLibrary(2, 1);
    QStringList titles;
    int bottom = Sidebar::padding - Sidebar::boxSpacing;
    for (GroupBox* box : boxes()) {
        titles.append(box->accessibleName());
        EXPECT_EQ(box->x(), 16);
        EXPECT_EQ(box->width(), 330 - 32);
        EXPECT_EQ(box->y(), bottom + Sidebar::boxSpacing);
        bottom = box->y() + box->height();
    }
    EXPECT_EQ(titles, (QStringList{QStringLiteral("Vellmora"), QStringLiteral("Aktiver Stempel"),
                                   QStringLiteral("Zuletzt verwendet"), QStringLiteral("Stempelbibliothek"),
                                   QStringLiteral("Bedienung")}));
    showLibrary(2, 0);
    EXPECT_EQ(boxes().size(), 4) << "without recent stamps their box is not there at all";
}

TEST_F(WindowLayoutTest, StatisticsShowTheFiguresInRows) {
    window.sidebar().setFigures({QStringLiteral("3 / 12"), 7, 2, true});
    showLibrary(5, 0);
    int y = 0;
    const std::initializer_list<std::pair<const char*, const char*>> rows{
        {"Seite", "3 / 12"},
        {"Stempel gesamt", "7"},
        {"Aktuelle Seite", "2"},
        {"Bibliothek", "5"},
        {"Speicherort", "Application Support"}};
    for (const auto& [title, value] : rows) {
        const QRect left = inBox(label(title));
        const QRect right = inBox(label(value));
        EXPECT_EQ(left.x(), 12) << title;
        EXPECT_EQ(right.x() + right.width(), 298 - 12) << title;
        EXPECT_EQ(left.y(), right.y());
        EXPECT_GT(left.y(), y);
        y = left.y();
        EXPECT_EQ(label(value).font().pixelSize(), 12);
        EXPECT_EQ(label(value).font().weight(), QFont::Medium);
    }
}

TEST_F(WindowLayoutTest, TheActiveStampIsShownLargeOrExplained) {
    showLibrary(1, 0, true);
    auto& box = *window.findChild<ActiveStampBox*>();
    EXPECT_EQ(box.findChild<PictureView*>()->height(), 180 + 2 * 8);
    EXPECT_TRUE(label("Standardstempel").isVisibleTo(&window));
    showLibrary(1, 0);
    EXPECT_FALSE(label("Standardstempel").isVisibleTo(&window));
    EXPECT_FALSE(label("Kein Stempel gewählt").isVisibleTo(&window));
    isPictureReadable = false;
    showLibrary(1, 0);
    EXPECT_TRUE(QTest::qWaitFor([&] { return label("Kein Stempel gewählt").isVisibleTo(&window); }));
    EXPECT_FALSE(box.findChild<PictureView*>()->isVisibleTo(&window));
    showLibrary(0, 0);
    EXPECT_TRUE(label("Kein Stempel gewählt").isVisibleTo(&window));
    EXPECT_TRUE(label("Noch keine Stempel in der Bibliothek.").isVisibleTo(&window));
}

TEST_F(WindowLayoutTest, TilesAndRowsKeepTheirMeasures) {
    showLibrary(3, 1, true);
    const QList<PresetTile*> tiles = window.findChildren<PresetTile*>();
    ASSERT_EQ(tiles.size(), 3);
    EXPECT_EQ(tiles[0]->width(), (298 - 24 - 10) / 2)
        << "two columns of at least 120 points, 10 points apart";
    EXPECT_EQ(tiles[1]->x() - tiles[0]->x(), tiles[0]->width() + 10);
    EXPECT_EQ(tiles[2]->y() - tiles[0]->y(), tiles[0]->height() + 10);
    const QRect picture = tiles[0]->findChild<PictureView*>()->geometry();
    EXPECT_EQ(picture, QRect(10, 10, tiles[0]->width() - 20, 84 + 16));
    EXPECT_EQ(tiles[0]->findChildren<TextLabel*>().first()->y(), picture.bottom() + 1 + 8);
    EXPECT_EQ(tiles[0]->deleteButton().x() - tiles[0]->insertButton().geometry().right() - 1, 6);
    EXPECT_EQ(tiles[0]->height() - tiles[0]->insertButton().geometry().bottom() - 1, 10);

    auto& row = *window.findChild<PresetRow*>();
    EXPECT_EQ(row.findChild<PictureView*>()->geometry(), QRect(8, 8, 44 + 12, 44 + 12));
    EXPECT_EQ(row.findChildren<TextLabel*>().first()->x(), 8 + 56 + 10);
    EXPECT_EQ(row.findChildren<TextLabel*>().last()->text(), QStringLiteral("17. Mai 2024"))
        << "the day on which the entry was made, not that of its last use";
}

TEST_F(WindowLayoutTest, ATileIsAsHighAsItsNameAndBadgeNeed) {
    const Theme theme(SystemFonts::load());
    constexpr int width = 132;
    const PresetTile::Heights heights(width, theme);
    Thumbnails thumbnails(nullptr);
    PresetTile tile({}, thumbnails, theme, nullptr);
    const TextLabel& badge = *tile.findChildren<TextLabel*>().last();
    EXPECT_EQ(badge.text(), QStringLiteral("Standard"));
    QStringList names{QStringLiteral("i"), QStringLiteral("日本語の承認スタンプです"),
                      QString(60, QLatin1Char('W'))};
    for (int length = 8; length < 24; ++length) {
        names.append(QStringLiteral("AVAVAVAVAVAVAVAVAVAVAVAVAVAV").left(length));
        names.append(QStringLiteral("Unterschrift Müller-Lüdens").left(length));
        names.append(QStringLiteral("Genehmigt \U0001F44D\U0001F44D e\u0301e\u0301 ja").left(length));
    }
    std::array<QSet<int>, 2> seen;  // without the badge, with it
    for (const QString& name : names) {
        for (const bool isBuiltin : {false, true}) {
            StampPreset preset;
            preset.displayName = name;
            if (isBuiltin)
                preset.builtinKey = name;
            tile.setData({preset, {}, false});
            tile.layout()->activate();
            EXPECT_EQ(badge.isVisibleTo(&tile), isBuiltin);
            EXPECT_EQ(heights.of(preset), tile.layout()->totalHeightForWidth(width)) << name.toStdString();
            seen[isBuiltin ? 1 : 0].insert(heights.of(preset));
        }
    }
    for (const QSet<int>& heightsOfNames : seen)
        EXPECT_EQ(heightsOfNames.size(), 2) << "one line, and two";
}

TEST_F(WindowLayoutTest, IsPaintedWithoutOtherThreads) {
    showLibrary(8, 2, true);
    auto& pool = *QThreadPool::globalInstance();
    const int usualCount = pool.maxThreadCount();
    QSemaphore isPainted;
    std::atomic<bool> wasWaitedFor = false;
    pool.setMaxThreadCount(1);
    pool.start([&] { wasWaitedFor = !isPainted.tryAcquire(1, 5000); });
    window.grab();
    window.commandBar().setStatus(QStringLiteral("Fehler"), true);
    window.grab();
    isPainted.release();
    pool.waitForDone();
    pool.setMaxThreadCount(usualCount);
    EXPECT_FALSE(wasWaitedFor);
}

TEST_F(WindowLayoutTest, EverySymbolHasItsOwnDrawing) {
    QList<QImage> drawings;
    for (const Symbol symbol :
         {Symbol::document, Symbol::starOnSquares, Symbol::photoOnRectangle, Symbol::photo, Symbol::trash,
          Symbol::trayArrowDown, Symbol::documentArrowUp, Symbol::warning}) {
        QImage image(24, 24, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::white);
        QPainter painter(&image);
        drawSymbol(painter, symbol, image.rect(), Qt::red);
        painter.end();
        int inked = 0;
        for (int i = 0; i < 24 * 24; ++i)
            inked += isClose(image.pixelColor(i % 24, i / 24), Qt::red) ? 1 : 0;
        EXPECT_GT(inked, 20) << "in the colour that was asked for";
        EXPECT_FALSE(drawings.contains(image));
        drawings.append(image);
    }
}

TEST_F(WindowLayoutTest, TheDropZoneKeepsItsWidthsAndTexts) {
    EmptyState& empty = window.editorArea().emptyState();
    EXPECT_EQ(empty.dropZone().width(), 420);
    EXPECT_NEAR(inWindow(empty.dropZone()).center().x(), inWindow(window.editorArea()).center().x(), 1);
    EXPECT_TRUE(label("PDF hier ablegen").isVisibleTo(&window));
    window.editorArea().setData({false, true});
    EXPECT_TRUE(label("PDF jetzt loslassen").isVisibleTo(&window));
    EXPECT_FALSE(window.editorArea().overlay().isVisibleTo(&window));
    window.editorArea().setData({true, true});
    EXPECT_TRUE(window.editorArea().overlay().isVisibleTo(&window));
    EXPECT_EQ(window.editorArea().overlay().width(), 440);
    window.editorArea().setData({true, false});
    EXPECT_FALSE(window.editorArea().overlay().isVisibleTo(&window));
}

TEST_F(WindowLayoutTest, ALongStatusIsCutOffAndMovesNothing) {
    const int before = inWindow(*window.commandBar().findChildren<Button*>().last()).right();
    window.commandBar().setStatus(QString(400, QLatin1Char('x')), true);
    settle();
    EXPECT_EQ(window.width(), 1220);
    EXPECT_EQ(inWindow(*window.commandBar().findChildren<Button*>().last()).right(), before);
    EXPECT_EQ(window.commandBar().height(), 52);
}

TEST(ThemeTest, EveryTextCanBeReadInLightAndDark) {
    QPalette light;
    light.setColor(QPalette::Window, QColor(239, 239, 239));
    light.setColor(QPalette::Base, Qt::white);
    light.setColor(QPalette::WindowText, Qt::black);
    light.setColor(QPalette::Highlight, QColor(48, 140, 198));
    QPalette dark;
    dark.setColor(QPalette::Window, QColor(42, 46, 50));
    dark.setColor(QPalette::Base, QColor(27, 30, 32));
    dark.setColor(QPalette::WindowText, QColor(252, 252, 252));
    dark.setColor(QPalette::Highlight, QColor(61, 174, 233));
    for (const QPalette& palette : {light, dark}) {
        for (const QColor& ground : {Theme::boxBackground(palette), Theme::commandBarBackground(palette)}) {
            EXPECT_GE(Theme::contrast(Theme::text(palette), ground), 4.5);
            EXPECT_GE(Theme::contrast(Theme::secondaryText(palette), ground), 4.5);
        }
        EXPECT_GE(Theme::contrast(Theme::text(palette), Theme::buttonBackground(palette)), 4.5);
        EXPECT_GE(Theme::contrast(Qt::white, Theme::readable(Theme::accent(palette), Qt::white)), 4.5);
    }
    EXPECT_NEAR(Theme::contrast(Qt::white, Qt::black), 21, 0.01);
}

/// Sees whether pictures that came were painted.
class PaintWatcher : public QObject {
public:
    explicit PaintWatcher(MainWindow& window) {
        qApp->installEventFilter(this);
        connect(&window.sidebar().thumbnails(), &Thumbnails::changed, this, [this] { isPainted = false; });
    }

    bool isPainted = true;

protected:
    bool eventFilter(QObject* object, QEvent* event) override {
        isPainted |= event->type() == QEvent::Paint && qobject_cast<PictureView*>(object);
        return false;
    }
};

TEST_F(WindowLayoutTest, TellsOnceThatTheWindowIsComplete) {
    for (const bool hasPictures : {false, true}) {
        MainWindow fresh(callbacks(), Theme(SystemFonts::load()));
        FirstPaint firstPaint(fresh);
        QSignalSpy completed(&firstPaint, &FirstPaint::completed);
        const PaintWatcher watcher(fresh);
        QObject::connect(&firstPaint, &FirstPaint::completed, &watcher,
                         [&watcher] { EXPECT_TRUE(watcher.isPainted) << "the last picture, too"; });
        if (hasPictures) {
            StampPreset preset;
            fresh.sidebar().setLibrary({{preset}, {}, preset, preset.id});
        }
        QTest::qWait(0);
        EXPECT_EQ(completed.size(), 0);
        fresh.show();
        ASSERT_TRUE(QTest::qWaitFor([&] { return completed.size() == 1; }));
        EXPECT_EQ(decodes > 0, hasPictures);
        EXPECT_FALSE(fresh.sidebar().thumbnails().isLoading());
        fresh.update();
        QTest::qWait(50);
        EXPECT_EQ(completed.size(), 1);
    }
}
