#pragma once

#include "base/SystemFonts.h"
#include "ui/TextFont.h"

#include <memory>
#include <optional>

#include <QColor>
#include <QFont>
#include <QPalette>

namespace vellmora {

/// The window's fonts and colours, and the sizes that more than one view needs. Sizes are in view points, as
/// they are where the desktop's font has its usual size; where that is larger, the window's texts are, too.
/// Colours are made from the palette that is handed in, light or dark.
class Theme {
public:
    /// `textScale` is 1 where texts have their usual size.
    explicit Theme(SystemFonts fonts, double textScale = 1);

    /// By how much texts are larger than usual on a desktop with this font: 1 to 1.5, and no more than a
    /// screen of this width has room for. `dotsPerInch` are the screen's logical ones.
    static double textScaleFor(const QFont& desktopFont, double dotsPerInch, int screenWidth);

    static constexpr QFont::Weight regular = QFont::Normal;
    static constexpr QFont::Weight medium = QFont::Medium;
    static constexpr QFont::Weight semibold = QFont::DemiBold;

    static constexpr double paragraphSize = 12;
    static constexpr double bodySize = 13;
    static constexpr double titleSize = 15;

    /// Without kerning and ligatures, since to shape all texts of the window takes a part of its start.
    /// Scripts that need it are shaped. An accent that is a character of its own may stand beside its letter.
    TextFont font(double size, QFont::Weight weight = regular) const;
    /// A length that grows with the texts, rounded.
    int scaled(double length) const { return qRound(length * m_textScale); }

    /// Contrast of two opaque colours, 1 to 21 (WCAG 2.1, "contrast ratio").
    static double contrast(const QColor& a, const QColor& b);
    /// `color` made lighter or darker until it has a contrast of at least 4.5 : 1 to `ground`.
    static QColor readable(const QColor& color, const QColor& ground);

    // All are taken from the palette's colours of an active window. So nothing changes its colour when the
    // window becomes inactive or a control is disabled.
    static QColor text(const QPalette& palette) {
        return palette.color(QPalette::Active, QPalette::WindowText);
    }
    static QColor secondaryText(const QPalette& palette);
    /// The sign beside a text that tells of a problem, on this ground.
    static QColor problem(const QColor& ground);
    static QColor accent(const QPalette& palette) {
        return palette.color(QPalette::Active, QPalette::Highlight);
    }

    /// Ground of the sidebar: the system's control background.
    static QColor controlBackground(const QPalette& palette) {
        return palette.color(QPalette::Active, QPalette::Base);
    }
    /// Ground of the command bar: a shade different from the window's own.
    static QColor commandBarBackground(const QPalette& palette);
    static QColor divider(const QPalette& palette);
    static QColor boxBackground(const QPalette& palette);
    static QColor buttonBackground(const QPalette& palette);
    /// What lies under a stamp's picture. Pictures are made for paper: on a ground that is not light itself
    /// they lie on a sheet of it. Nothing where they need none.
    static std::optional<QColor> paperUnderPictures(const QPalette& palette);

    /// The editor area is black and drop zones are dark, on light and dark desktops alike.
    static QColor editorBackground(const QPalette& palette);
    static QColor dropZoneMaterial();
    static QColor onDark(double opacity);

    static QColor black(double opacity);
    static QColor withOpacity(QColor color, double opacity);

private:
    struct Fonts;

    double m_textScale;
    std::shared_ptr<Fonts> m_fonts;  ///< of this theme and its copies
};

}  // namespace vellmora
