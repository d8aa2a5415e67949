#include "ui/Theme.h"

#include <gtest/gtest.h>

#include <QFontMetricsF>
#include <QImage>

using namespace vellmora;

namespace {

constexpr QRect box(20, 10, 260, 31);

struct Painting {
    Qt::Alignment alignment;
    double ratio;  ///< pixels for each view point
};

QImage emptyPicture(double ratio) {
    QImage picture((QSizeF(300, 50) * ratio).toSize(), QImage::Format_ARGB32_Premultiplied);
    picture.setDevicePixelRatio(ratio);
    picture.fill(Qt::white);
    return picture;
}

QImage painted(const TextFont& font, const Painting& how, const QString& line) {
    QImage picture = emptyPicture(how.ratio);
    QPainter painter(&picture);
    font.paint(painter, box, how.alignment, line);
    return picture;
}

QImage paintedByQt(const TextFont& font, const Painting& how, const QString& line) {
    QImage picture = emptyPicture(how.ratio);
    QPainter painter(&picture);
    painter.setFont(font.font());
    painter.drawText(box, static_cast<int>(how.alignment) | Qt::TextSingleLine | Qt::TextDontClip, line);
    return picture;
}

/// The columns from the first to the last one in which something is painted.
QPair<int, int> columnsOf(const QImage& picture) {
    QPair<int, int> columns(picture.width(), -1);
    for (int x = 0; x < picture.width(); ++x) {
        for (int y = 0; y < picture.height(); ++y) {
            if (picture.pixelColor(x, y) == Qt::white)
                continue;
            columns = {qMin(columns.first, x), x};
            break;
        }
    }
    return columns;
}

}  // namespace

/// Simple texts, and those that a glyph beside the other would show in another order, apart or not at all.
TEST(TextFontTest, MeasuresAndPaintsAsQtDoes) {
    const Theme theme(SystemFonts::load());
    for (const TextFont& font :
         {theme.font(10, Theme::medium), theme.font(11), theme.font(13, Theme::semibold),
          theme.font(18, Theme::semibold), theme.font(12)}) {
        EXPECT_EQ(font.lineHeight(), QFontMetrics(font.font()).height());
        for (const char* text :
             {"", "Genehmigt – „AVATAR“ fl. ß", "1. Übung (2024) = 99,50 €", "Ωμέγα Жизнь", "A     B",
              "① ☎ ab", "日本語の承認", "שלום 12 עולם", "مرحبا", "e\u0301e\u0300 x\u0323", "Soft\u00adhyphen",
              "Daumen \U0001F44D\U0001F3FD hoch", "A\u200d\u200eB", "हिन्दी", "gut\u2028schlecht"}) {
            const QString line = QString::fromUtf8(text);
            EXPECT_NEAR(font.width(line), QFontMetricsF(font.font()).horizontalAdvance(line), 0.2) << text;
            for (const double ratio : {1.0, 1.5, 2.0}) {
                // On finer displays a line may end one pixel beside Qt's.
                const int slack = ratio == 1 ? 0 : 1;
                const Painting left{Qt::AlignLeft | Qt::AlignVCenter, ratio};
                EXPECT_EQ(painted(font, left, line), paintedByQt(font, left, line)) << text << ratio;
                for (const Painting& how : {Painting{Qt::AlignRight | Qt::AlignTop, ratio},
                                            Painting{Qt::AlignHCenter | Qt::AlignVCenter, ratio}}) {
                    const auto [first, last] = columnsOf(painted(font, how, line));
                    const auto [firstOfQt, lastOfQt] = columnsOf(paintedByQt(font, how, line));
                    EXPECT_NEAR(first, firstOfQt, slack) << text << how.alignment << ratio;
                    EXPECT_NEAR(last, lastOfQt, slack) << text << how.alignment << ratio;
                }
            }
        }
    }
}
