#include "library/BuiltinStampDefinitions.h"
#include "library/BuiltinStampImage.h"
#include "tests/support/EventLoop.h"
#include "tests/support/GTestQt.h"
#include "tests/support/TestImages.h"
#include "ui/CommandBar.h"
#include "ui/MainWindow.h"

#include <gtest/gtest.h>

#include <QPainter>
#include <QTest>

using namespace vellmora;
using namespace vellmora::test;

namespace {

QPalette paletteOf(const QColor& window, const QColor& base, const QColor& text, const QColor& accent) {
    QPalette palette(text, window, window.lighter(), window.darker(), window, text, base);
    palette.setColor(QPalette::Highlight, accent);
    return palette;
}

QPalette darkPalette() {
    return paletteOf({42, 46, 50}, {27, 30, 32}, {252, 252, 252}, {61, 174, 233});
}
QPalette lightPalette() {
    return paletteOf({239, 239, 239}, Qt::white, Qt::black, {48, 140, 198});
}
QPalette highContrastPalette() {
    return paletteOf(Qt::black, Qt::black, Qt::white, Qt::yellow);
}

/// What a tile shows of a picture on a desktop with this palette.
class TileTest : public testing::Test {
protected:
    QImage tileWith(const QImage& picture, const QPalette& palette) {
        QWidget ground;
        ground.setPalette(palette);
        ground.setAutoFillBackground(true);
        ground.setBackgroundRole(QPalette::Base);
        Thumbnails thumbnails(nullptr);
        PictureView view({8, 84, 12, 0.06, 24}, thumbnails, &ground);
        bool isLoaded = false;
        view.onLoaded = [&](bool) { isLoaded = true; };
        view.setSource({QStringLiteral("picture"), [&]() -> std::optional<Image> { return Image(picture); }});
        view.setFixedWidth(240);
        ground.resize(view.size());
        ground.show();
        EXPECT_TRUE(QTest::qWaitFor([&] { return isLoaded; }));
        return ground.grab().toImage();
    }
    /// The least and the greatest contrast that pixels of the area have to what is most frequent in it.
    static double strongestContrast(const QImage& image, const QRect& area) {
        QHash<QRgb, int> counts;
        for (int y = area.top(); y <= area.bottom(); ++y) {
            for (int x = area.left(); x <= area.right(); ++x)
                ++counts[image.pixel(x, y)];
        }
        QRgb ground = 0;
        for (auto it = counts.cbegin(); it != counts.cend(); ++it)
            ground = counts[it.key()] > counts.value(ground) ? it.key() : ground;
        double strongest = 1;
        for (auto it = counts.cbegin(); it != counts.cend(); ++it)
            strongest = std::max(strongest, Theme::contrast(QColor(it.key()), QColor(ground)));
        return strongest;
    }
    /// The inner part, without the picture's own frame and corners.
    static QRect middleOf(const QImage& image) {
        return QRect(image.width() / 6, image.height() / 2 - 12, image.width() * 2 / 3, 24);
    }
};

}  // namespace

TEST_F(TileTest, BlackInkIsSeenOnDarkTiles) {
    QImage signature(400, 150, QImage::Format_ARGB32_Premultiplied);
    signature.fill(Qt::transparent);
    QPainter painter(&signature);
    painter.setPen(QPen(Qt::black, 12));
    painter.drawLine(20, 130, 380, 20);
    painter.end();
    for (const QPalette& palette : {lightPalette(), darkPalette(), highContrastPalette()}) {
        const QImage tile = tileWith(signature, palette);
        EXPECT_GT(strongestContrast(tile, middleOf(tile)), 12);
    }
}

TEST_F(TileTest, BuiltInStampsCanBeReadOnDarkTiles) {
    const SystemFonts fonts = SystemFonts::load();
    for (const BuiltinStampDefinition& stamp :
         builtinDefinitions(QDateTime(QDate(2024, 5, 17), QTime(12, 0)))) {
        const QImage picture = makeBuiltinStampImage(fonts, stamp.title, stamp.subtitle, stamp.tint);
        for (const QPalette& palette : {darkPalette(), highContrastPalette()}) {
            const QImage tile = tileWith(picture, palette);
            EXPECT_GE(strongestContrast(tile, middleOf(tile)), 4.5) << stamp.key.toStdString();
        }
    }
}

TEST_F(TileTest, OnLightTilesThereIsNoSheetOfPaper) {
    QImage dot(400, 400, QImage::Format_ARGB32_Premultiplied);
    dot.fill(Qt::transparent);
    const QImage tile = tileWith(dot, lightPalette());
    const QColor ground = tile.pixelColor(20, tile.height() / 2);
    EXPECT_EQ(tile.pixelColor(tile.rect().center()), ground);
    EXPECT_NEAR(ground.redF(), 0.94, 0.01) << "black at 6 %";
}

TEST(StatusTest, AProblemHasASignBesideItsText) {
    for (const QPalette& palette : {lightPalette(), darkPalette(), highContrastPalette()}) {
        QWidget parent;
        parent.setPalette(palette);
        CommandBar bar({}, Theme(SystemFonts::load()), &parent);
        bar.resize(900, bar.sizeHint().height());
        const auto shown = [&](const char* text, bool isProblem) {
            bar.setStatus(QString::fromUtf8(text), isProblem);
            bar.layout()->activate();
            return bar.grab().toImage();
        };
        const QImage fine = shown("Fehler beim Drucken", false);
        const QImage problem = shown("Fehler beim Drucken", true);
        auto* sign = bar.findChild<SymbolView*>();
        ASSERT_TRUE(sign && sign->isVisibleTo(&bar));
        EXPECT_NE(fine, problem);
        EXPECT_LT(bar.statusLabel().x() - sign->geometry().right(), 20) << "beside its text";
        EXPECT_EQ(bar.statusLabel().geometry().right() + 1, bar.width() - CommandBar::padding);
        double strongest = 1;
        for (int y = sign->y(); y < sign->geometry().bottom(); ++y) {
            for (int x = sign->x(); x < sign->geometry().right(); ++x)
                strongest = std::max(strongest, Theme::contrast(problem.pixelColor(x, y),
                                                                Theme::commandBarBackground(palette)));
        }
        EXPECT_GE(strongest, 4.4);
        shown("Gedruckt", false);
        EXPECT_FALSE(sign->isVisibleTo(&bar));
    }
}

TEST(TextScaleTest, FollowsTheDesktopsFont) {
    const auto scale = [](double points, double dotsPerInch, int screenWidth = 1366) {
        QFont font;
        font.setPointSizeF(points);
        return Theme::textScaleFor(font, dotsPerInch, screenWidth);
    };
    for (const double usual : {9.0, 10.0, 11.0})
        EXPECT_EQ(scale(usual, 96), 1) << usual;
    EXPECT_DOUBLE_EQ(scale(12, 96), 1.2);
    EXPECT_DOUBLE_EQ(scale(15, 96), 1.5);
    EXPECT_DOUBLE_EQ(scale(10, 144), 1.5);
    EXPECT_DOUBLE_EQ(scale(40, 96), 1.5) << "as much as there is room for";
    QFont inPixels;
    inPixels.setPixelSize(20);
    EXPECT_DOUBLE_EQ(Theme::textScaleFor(inPixels, 96, 1366), 1.5);
    EXPECT_LT(scale(15, 96, 960), 1.1) << "the commands would not fit on the screen";
    EXPECT_EQ(scale(15, 96, 600), 1);
}

/// With the largest texts nothing is cut off but what may be, in a window on a small screen.
TEST(TextScaleTest, LargeTextsFitIntoAWindowOnASmallScreen) {
    const Theme theme(SystemFonts::load(), 1.5);
    QAction first(QStringLiteral("PDF öffnen"));
    QAction second(QStringLiteral("Stempel importieren"));
    QAction third(QStringLiteral("Stempel auf aktueller Seite"));
    QAction fourth(QStringLiteral("Ausgewählten löschen"));
    QAction fifth(QStringLiteral("Speichern"));
    QAction sixth(QStringLiteral("Speichern unter…"));
    MainWindow::Callbacks callbacks;
    callbacks.commands = {&first, &second, &third, &fourth, &fifth, &sixth};
    callbacks.sidebar.pictureOf = [](const StampPreset&) { return DeferredPicture(); };
    MainWindow window(callbacks, theme);
    constexpr QSize screen(1366, 768);
    window.fitInto(screen);
    EXPECT_LE(window.minimumWidth(), screen.width());
    EXPECT_LE(window.minimumHeight(), screen.height());
    window.resize(window.minimumSize());
    LibraryContent library;
    for (int i = 0; i < 4; ++i) {
        StampPreset preset;
        preset.displayName = QStringLiteral("Eingegangen am: 17.05.2024");
        preset.builtinKey = QString::number(i);
        library.presets.append(preset);
    }
    library.recentPresets = library.presets.mid(0, 2);
    library.selectedPreset = library.presets.first();
    library.selectedPresetID = library.presets.first().id;
    window.sidebar().setLibrary(library);
    window.sidebar().setFigures({QStringLiteral("1000 / 2000"), 12, 3, true});
    window.show();
    settle();
    for (auto* label : window.findChildren<TextLabel*>()) {
        if (!label->isVisible() || label == &window.commandBar().statusLabel())
            continue;
        const QRect inParent(label->mapTo(label->parentWidget(), QPoint()), label->size());
        EXPECT_TRUE(label->parentWidget()->rect().contains(inParent)) << label->text().toStdString();
        const int needed =
            label->hasHeightForWidth() ? label->heightForWidth(label->width()) : label->sizeHint().height();
        EXPECT_GE(label->height(), needed) << label->text().toStdString();
        const bool mayBeCut = qobject_cast<PresetItem*>(label->parentWidget());
        const int widest = label->hasHeightForWidth() || mayBeCut ? 0 : label->sizeHint().width();
        EXPECT_GE(label->width(), widest) << label->text().toStdString();
    }
    for (auto* button : window.findChildren<Button*>()) {
        EXPECT_GE(button->height(), button->fontMetrics().height());
        EXPECT_TRUE(button->parentWidget()->rect().contains(button->geometry()))
            << button->text().toStdString();
    }
}
