#include "library/BuiltinStampImage.h"

#include "base/Rect.h"

#include <utility>

#include <QList>
#include <QPainter>

namespace vellmora {

namespace {

// All lengths in points, one for each pixel; y upwards from the lower edge.
constexpr int imageWidth = 1180;
constexpr int heightWithSubtitle = 320;
constexpr int heightWithoutSubtitle = 260;

constexpr double frameInset = 24;
constexpr double frameRadius = 30;
constexpr double frameLineWidth = 18;
constexpr double fillAlpha = 0.08;

constexpr Rect titleBox{60, 78, 1060, 130};
constexpr Rect raisedTitleBox{60, 132, 1060, 120};
constexpr double titleSize = 120;
constexpr double raisedTitleSize = 104;
constexpr double titleKerning = 3.5;

constexpr Rect subtitleBox{60, 62, 1060, 72};
constexpr double subtitleSize = 72;
constexpr double subtitleKerning = 1.2;
constexpr double subtitleAlpha = 0.95;

QColor withAlpha(QColor color, double alpha) {
    color.setAlphaF(static_cast<float>(alpha));
    return color;
}

void drawFrame(QPainter& painter, int height, const QColor& tint) {
    const Rect frame = Rect{0, 0, imageWidth, static_cast<double>(height)}.insetBy(frameInset);
    painter.setPen(Qt::NoPen);
    painter.setBrush(withAlpha(tint, fillAlpha));
    painter.drawRoundedRect(toQt(frame, height), frameRadius, frameRadius);
    painter.setPen(QPen(tint, frameLineWidth));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(toQt(frame, height), frameRadius, frameRadius);
}

/// One centred line at the top of the box. A text that is wider than the box is not shrunk.
void drawLine(QPainter& painter, const QString& text, QFont font, double kerning, const QColor& color,
              const QRectF& box) {
    font.setLetterSpacing(QFont::AbsoluteSpacing, kerning);
    painter.setFont(font);
    painter.setPen(color);
    painter.drawText(box, Qt::AlignHCenter | Qt::AlignTop | Qt::TextSingleLine | Qt::TextDontClip, text);
}

/// The picture in one colour with these opacities. It makes a small file that is quickly written and read.
QImage tinted(QImage opacity, const QColor& tint) {
    opacity.reinterpretAsFormat(QImage::Format_Indexed8);
    QList<QRgb> colors;
    for (int alpha = 0; alpha <= 255; ++alpha)
        colors.append(qRgba(tint.red(), tint.green(), tint.blue(), alpha));
    opacity.setColorTable(colors);
    return opacity;
}

}  // namespace

QImage makeBuiltinStampImage(const SystemFonts& fonts, const QString& title,
                             const std::optional<QString>& subtitle, const QColor& tint) {
    const int height = subtitle ? heightWithSubtitle : heightWithoutSubtitle;
    QImage opacity(imageWidth, height, QImage::Format_Alpha8);
    opacity.fill(Qt::transparent);
    QPainter painter(&opacity);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
    drawFrame(painter, height, tint);
    drawLine(painter, title, fonts.font(subtitle ? raisedTitleSize : titleSize, QFont::Black), titleKerning,
             tint, toQt(subtitle ? raisedTitleBox : titleBox, height));
    if (subtitle && !subtitle->isEmpty()) {
        drawLine(painter, *subtitle, fonts.font(subtitleSize, QFont::Bold), subtitleKerning,
                 withAlpha(tint, subtitleAlpha), toQt(subtitleBox, height));
    }
    painter.end();
    return tinted(std::move(opacity), tint);
}

}  // namespace vellmora
