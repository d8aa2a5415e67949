#include "tests/support/EventLoop.h"
#include "tests/support/TestImages.h"
#include "ui/DropZone.h"
#include "ui/RoundedRect.h"
#include "ui/TextLabel.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <gtest/gtest.h>

#include <QApplication>
#include <QHelpEvent>
#include <QToolTip>

using namespace vellmora;
using namespace vellmora::test;

namespace {

/// What `paint` paints onto white, at so many pixels for each view point.
QImage paintedAt(double ratio, const std::function<void(QPainter&)>& paint) {
    QImage picture(qRound(400 * ratio), qRound(300 * ratio), QImage::Format_RGB32);
    picture.setDevicePixelRatio(ratio);
    picture.fill(Qt::white);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(7, 5);
    paint(painter);
    return picture;
}

/// The greatest difference of a channel.
int difference(const QImage& a, const QImage& b) {
    int most = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            const QRgb p = a.pixel(x, y);
            const QRgb q = b.pixel(x, y);
            most = std::max({most, std::abs(qRed(p) - qRed(q)), std::abs(qGreen(p) - qGreen(q)),
                             std::abs(qBlue(p) - qBlue(q))});
        }
    }
    return most;
}

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

/// Rounding aside.
TEST(RoundedRectTest, StripsAreSeenNowhere) {
    const QColor color(30, 90, 200, 120);
    for (const double ratio : {1.0, 2.0, 1.25, 1.5}) {
        for (const QRect& rect : {QRect(0, 0, 300, 250), QRect(3, 4, 61, 200), QRect(0, 0, 90, 41),
                                  QRect(10, 10, 24, 24), QRect(0, 0, 100, 9)}) {
            for (const double radius : {0.0, 3.5, 4.0, 12.0}) {
                if (2 * radius > rect.height())
                    continue;
                const auto plain = paintedAt(ratio, [&](QPainter& painter) {
                    painter.setPen(Qt::NoPen);
                    painter.setBrush(color);
                    painter.drawRoundedRect(rect, radius, radius);
                });
                const auto inStrips = paintedAt(
                    ratio, [&](QPainter& painter) { fillRoundedRect(painter, rect, radius, color); });
                EXPECT_LE(difference(plain, inStrips), 1) << ratio << " " << rect.height() << " " << radius;
            }
        }
        for (const int rows : {rowsOfDrawings, rowsOfCurves, rowsOfPictures}) {
            const auto circle = [&](QPainter& painter) { painter.drawEllipse(QRectF(20.3, 10, 250, 250)); };
            const auto inStrips = paintedAt(ratio, [&](QPainter& painter) {
                paintInStrips(painter, QRect(0, 0, 300, 280), rows, [&] { circle(painter); });
            });
            EXPECT_LE(difference(paintedAt(ratio, circle), inStrips), 1) << ratio << " " << rows;
        }
    }
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
