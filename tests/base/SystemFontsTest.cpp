#include "base/SystemFonts.h"

#include <gtest/gtest.h>

#include <QFontMetricsF>

using namespace vellmora;

TEST(SystemFontsTest, EveryWeightIsAWeightOfItsOwn) {
    const SystemFonts fonts = SystemFonts::load();
    double narrower = 0;
    for (const auto weight : {QFont::Normal, QFont::Medium, QFont::DemiBold, QFont::Bold, QFont::Black}) {
        const double width =
            QFontMetricsF(fonts.font(100, weight)).horizontalAdvance(QStringLiteral("Stempel"));
        EXPECT_GT(width, narrower) << weight;
        narrower = width;
    }
}

TEST(SystemFontsTest, FiguresAreOfOneWidth) {
    for (const auto weight : {QFont::Medium, QFont::Bold}) {
        const QFontMetricsF metrics(SystemFonts::load().font(100, weight));
        for (char digit = '0'; digit <= '9'; ++digit)
            EXPECT_EQ(metrics.horizontalAdvance(QLatin1Char(digit)),
                      metrics.horizontalAdvance(QLatin1Char('0')));
    }
}

TEST(SystemFontsTest, ALineHasRoomForAccentsAndDescenders) {
    const QFontMetricsF metrics(SystemFonts::load().font(100, QFont::Black));
    const QRectF inked = metrics.tightBoundingRect(QStringLiteral("ÄÖÜgjß"));
    EXPECT_LE(-inked.top(), metrics.ascent());
    EXPECT_LE(inked.bottom(), metrics.descent());
}
