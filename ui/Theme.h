#pragma once

#include "platform/fonts/SystemFonts.h"

#include <QColor>
#include <QFont>
#include <QPalette>

namespace vellmora {

/// The one place for the window's fonts, colours and sizes. Sizes in view points.
class Theme {
public:
    explicit Theme(SystemFonts fonts) : m_fonts(std::move(fonts)) {}

    static constexpr int minimumWindowWidth = 1220;
    static constexpr int minimumWindowHeight = 800;
    static constexpr int sidebarWidth = 330;
    static constexpr int sidebarPadding = 16;
    static constexpr int commandBarPadding = 12;
    static constexpr int emptyStateSpacing = 18;
    static constexpr int dropZoneMaxWidth = 420;
    static constexpr int dropOverlayMaxWidth = 440;
    static constexpr int dropOverlayPadding = 24;

    static constexpr double controlTextSize = 13;
    static constexpr double statusTextSize = 12;
    static constexpr double emptyStateTitleSize = 15;
    static constexpr double dropZoneTitleSize = 18;
    static constexpr double dropZoneSubtitleSize = 12;

    QFont font(double size, QFont::Weight weight = QFont::Normal) const { return m_fonts.font(size, weight); }

    /// Black at 92 %, over whatever the window shows behind the editor area.
    static QColor editorBackground();
    /// Dimmed text on the window's own background.
    static QColor secondaryText(const QPalette& palette);
    /// Dimmed text on the dark editor area.
    static QColor secondaryTextOnDark();

private:
    SystemFonts m_fonts;
};

}  // namespace vellmora
