#pragma once

#include "ui/Theme.h"

#include <QFocusEvent>
#include <QPainter>

namespace vellmora {

/// Marks the control that has the focus. The ring is shown only where the keyboard moved the focus there, not
/// where a click did.
class FocusRing {
public:
    static constexpr double lineWidth = 2;

    void focusIn(const QFocusEvent& event) {
        const Qt::FocusReason reason = event.reason();
        m_isShown = reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason ||
                    reason == Qt::ShortcutFocusReason || (m_isShown && reason == Qt::ActiveWindowFocusReason);
    }
    void focusOut(const QFocusEvent& event) {
        m_isShown = m_isShown && event.reason() == Qt::ActiveWindowFocusReason;
    }
    bool isShown() const { return m_isShown; }

    void paint(QPainter& painter, const QRectF& frame, double cornerRadius, const QPalette& palette) const {
        if (!m_isShown)
            return;
        constexpr double inset = lineWidth / 2;
        painter.setBrush(Qt::NoBrush);
        painter.setPen(
            QPen(Theme::readable(Theme::accent(palette), Theme::boxBackground(palette)), lineWidth));
        painter.drawRoundedRect(frame.adjusted(inset, inset, -inset, -inset), cornerRadius - inset,
                                cornerRadius - inset);
    }

private:
    bool m_isShown = false;
};

}  // namespace vellmora
