#include "ui/Theme.h"

#include "base/SystemColors.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include <QHash>

namespace vellmora {

namespace {

constexpr double readableContrast = 4.5;
/// A ground with less contrast to paper is as light as paper, as far as pictures are concerned.
constexpr double paperContrast = 1.5;

/// Desktops have fonts of 9 to 11 points, as pixels at 96 to the inch.
constexpr double usualFontHeight = 10 * 96.0 / 72;
constexpr double largestUsualFontHeight = 11.5 * 96.0 / 72;
constexpr double largestTextScale = 1.5;
/// What the commands take in a row, at their usual size.
constexpr double commandsWidth = 880;

double linear(double channel) {
    return channel <= 0.03928 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

double luminance(const QColor& color) {
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

/// `top`, with `share` as its opacity, painted over an opaque ground.
QColor mixed(const QColor& top, const QColor& ground, double share) {
    const auto channel = [share](int a, int b) {
        return static_cast<int>(std::lround(a * share + b * (1 - share)));
    };
    return {channel(top.red(), ground.red()), channel(top.green(), ground.green()),
            channel(top.blue(), ground.blue())};
}

QColor textOver(const QPalette& palette, QPalette::ColorRole ground, double share) {
    return mixed(Theme::text(palette), palette.color(QPalette::Active, ground), share);
}

QFont withoutShaping(QFont font) {
    font.setStyleStrategy(QFont::PreferNoShaping);
    return font;
}

}  // namespace

struct Theme::Fonts {
    SystemFonts family;
    QHash<QFont::Weight, QRawFont> faces;
    QHash<std::pair<int, QFont::Weight>, TextFont> made;  ///< by size in pixels, and weight
};

Theme::Theme(SystemFonts fonts, double textScale)
    : m_textScale(textScale), m_fonts(std::make_shared<Fonts>(Fonts{std::move(fonts), {}, {}})) {}

TextFont Theme::font(double size, QFont::Weight weight) const {
    const QFont font = withoutShaping(m_fonts->family.font(size * m_textScale, weight));
    const std::pair key(font.pixelSize(), weight);
    const auto known = m_fonts->made.constFind(key);
    if (known != m_fonts->made.constEnd())
        return *known;
    QRawFont& face = m_fonts->faces[weight];
    if (!face.isValid())
        face = QRawFont::fromFont(withoutShaping(m_fonts->family.font(paragraphSize * m_textScale, weight)));
    return *m_fonts->made.insert(key, TextFont(font, face));
}

double Theme::contrast(const QColor& a, const QColor& b) {
    const auto [darker, lighter] = std::minmax({luminance(a), luminance(b)});
    return (lighter + 0.05) / (darker + 0.05);
}

QColor Theme::readable(const QColor& color, const QColor& ground) {
    const QColor goal = contrast(Qt::white, ground) > contrast(Qt::black, ground) ? Qt::white : Qt::black;
    QColor result = color;
    for (double share = 0; contrast(result, ground) < readableContrast && share < 1; share += 0.02)
        result = mixed(goal, color, share);
    return result;
}

/// The font's own pixels are not asked for: that would load the font.
double Theme::textScaleFor(const QFont& desktopFont, double dotsPerInch, int screenWidth) {
    const double height =
        desktopFont.pointSizeF() > 0 ? desktopFont.pointSizeF() * dotsPerInch / 72 : desktopFont.pixelSize();
    if (height <= largestUsualFontHeight)
        return 1;
    return std::max(1.0, std::min({height / usualFontHeight, largestTextScale, screenWidth / commandsWidth}));
}

QColor Theme::problem(const QColor& ground) {
    return readable(colors::systemRed, ground);
}

std::optional<QColor> Theme::paperUnderPictures(const QPalette& palette) {
    if (contrast(boxBackground(palette), Qt::white) < paperContrast)
        return std::nullopt;
    return Qt::white;
}

QColor Theme::secondaryText(const QPalette& palette) {
    return readable(textOver(palette, QPalette::Base, 0.66), boxBackground(palette));
}

QColor Theme::commandBarBackground(const QPalette& palette) {
    return textOver(palette, QPalette::Window, 0.02);
}

QColor Theme::divider(const QPalette& palette) {
    return textOver(palette, QPalette::Base, 0.16);
}

QColor Theme::boxBackground(const QPalette& palette) {
    return textOver(palette, QPalette::Base, 0.035);
}

QColor Theme::buttonBackground(const QPalette& palette) {
    return textOver(palette, QPalette::Base, 0.11);
}

QColor Theme::editorBackground(const QPalette& palette) {
    return mixed(Qt::black, palette.color(QPalette::Active, QPalette::Window), 0.92);
}

QColor Theme::dropZoneMaterial() {
    return {38, 38, 40, 236};
}

QColor Theme::onDark(double opacity) {
    return withOpacity(Qt::white, opacity);
}

QColor Theme::black(double opacity) {
    return withOpacity(Qt::black, opacity);
}

QColor Theme::withOpacity(QColor color, double opacity) {
    color.setAlphaF(static_cast<float>(opacity));
    return color;
}

}  // namespace vellmora
