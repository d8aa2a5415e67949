#pragma once

#include "base/KeyboardFocus.h"
#include "ui/Theme.h"

#include <QPainter>

namespace vellmora {

/// Marks the control that has the focus. The ring is shown only where the keyboard moved the focus there, not
/// where a click did.
class FocusRing {
public:
    static constexpr double lineWidth = 2;

    void focusIn(const QFocusEvent& event) { m_focus.focusIn(event); }
    void focusOut(const QFocusEvent& event) { m_focus.focusOut(event); }
    bool isShown() const { return m_focus.isShown(); }

    void paint(QPainter& painter, const QRectF& frame, double cornerRadius, const QPalette& palette) const {
        if (!isShown())
            return;
        constexpr double inset = lineWidth / 2;
        painter.setBrush(Qt::NoBrush);
        painter.setPen(
            QPen(Theme::readable(Theme::accent(palette), Theme::boxBackground(palette)), lineWidth));
        painter.drawRoundedRect(frame.adjusted(inset, inset, -inset, -inset), cornerRadius - inset,
                                cornerRadius - inset);
    }

private:
    KeyboardFocus m_focus;
};

}  // namespace vellmora
