#include "tests/support/EventLoop.h"
#include "tests/support/TestImages.h"
#include "ui/DropZone.h"
#include "ui/TextLabel.h"

#include <cmath>
#include <gtest/gtest.h>

#include <QApplication>
#include <QHelpEvent>
#include <QToolTip>

using namespace vellmora;
using namespace vellmora::test;

namespace {

/// The blur that a drop zone's shadow is to have, at a distance outside of a straight edge.
double shadowAt(double distance) {
    constexpr double opacity = 0.22;
    constexpr double deviation = 9;
    return opacity * std::erfc(distance / deviation / std::sqrt(2.0)) / 2;
}

class LabelTest : public testing::Test {
protected:
    LabelTest() {
        label.setMaximumLines(1);
        label.resize(200, 20);
    }
    QString tooltip() {
        QToolTip::hideText();
        settle();
        QHelpEvent event(QEvent::ToolTip, {5, 5}, label.mapToGlobal(QPoint(5, 5)));
        QApplication::sendEvent(&label, &event);
        return QToolTip::text();
    }
    QImage painted(const char* text) {
        label.setText(QString::fromUtf8(text));
        return label.grab().toImage();
    }

    TextLabel label{{}, Theme(SystemFonts::load()).font(12), Theme::text, nullptr};
};

}  // namespace

TEST(DropZoneTest, ItsShadowIsAsDarkAndAsSoftAsItShould) {
    QWidget ground;
    ground.setStyleSheet(QStringLiteral("background: white"));
    ground.resize(500, 300);
    DropZone zone(Theme(SystemFonts::load()), &ground);
    const QRect frame(0, 50, 500, 180);
    zone.setFrameArea(frame);
    const QImage image = ground.grab().toImage();
    const auto darkness = [&](int x, int y) { return 1 - image.pixelColor(x, y).lightnessF(); };
    for (const int below : {1, 4, 8, 14, 20})
        EXPECT_NEAR(darkness(250, frame.bottom() + below), shadowAt(below - 0.5 - 8), 0.008) << below;
    EXPECT_NEAR(darkness(250, frame.top() - 2), shadowAt(1.5 + 8), 0.008);
    EXPECT_NEAR(darkness(DropZone::sidePadding - 4, 148), shadowAt(3.5), 0.008);
}

TEST_F(LabelTest, AccentsThatASystemTookApartStandOnTheirLetters) {
    EXPECT_EQ(painted("Gepru\u0308ft a\u0300 la carte"), painted("Geprüft à la carte"));
    EXPECT_NE(painted("Gepruft a la carte"), painted("Geprüft à la carte"));
}

TEST_F(LabelTest, ATextThatIsCutIsInATooltipAsItIs) {
    label.setText(QStringLiteral("kurz"));
    EXPECT_EQ(tooltip(), QString());
    label.setText(QStringLiteral("<b>Rechnung</b>  ").repeated(10));
    EXPECT_TRUE(tooltip().contains(QStringLiteral("&lt;b&gt;Rechnung&lt;/b&gt;  &lt;b&gt;")))
        << "blanks and signs";
    EXPECT_TRUE(tooltip().contains(QStringLiteral("white-space:pre-wrap")));
}

TEST_F(LabelTest, RunsOfBlanksAreSeen) {
    EXPECT_NE(painted("A     B"), painted("A B"));
    EXPECT_EQ(painted("A\nB"), painted("A B"));
}

TEST(LabelRoomTest, FollowsTheTextAndTheWidth) {
    QWidget window;
    const TextFont font = Theme(SystemFonts::load()).font(12);
    TextLabel line(QStringLiteral("kurz"), font, Theme::text, &window);
    TextLabel paragraph(QStringLiteral("Ein Absatz von einigen Worten"), font, Theme::text, &window);
    paragraph.setWordWrap(true);
    const int height = paragraph.heightForWidth(100);
    EXPECT_GT(paragraph.heightForWidth(50), height);
    EXPECT_EQ(paragraph.heightForWidth(100), height);
    const int width = line.sizeHint().width();

    line.setText(QStringLiteral("nicht mehr so kurz"));
    paragraph.setText(paragraph.text() + QStringLiteral(", und noch einigen mehr in weiteren Zeilen"));
    EXPECT_GT(line.sizeHint().width(), width);
    EXPECT_GT(paragraph.heightForWidth(100), height);
}
