#pragma once

#include "ui/FocusRing.h"
#include "ui/Symbols.h"
#include "ui/TextFont.h"
#include "ui/Theme.h"

#include <optional>

#include <QKeySequence>
#include <QPushButton>

namespace vellmora {

/// A push button in the window's own look.
class Button : public QPushButton {
    Q_OBJECT

public:
    enum class Look {
        bordered,
        prominent,    ///< in the accent colour
        destructive,  ///< bordered, in red
    };
    enum class Size { regular, small };

    Button(const QString& text, Look look, Size size, const Theme& theme, QWidget* parent);
    /// A button that shows a symbol and no text; its name is set afterwards.
    Button(Symbol symbol, Look look, Size size, const Theme& theme, QWidget* parent);

    static int heightOf(Size size, const Theme& theme);

    /// What the button does, where that is not its text: for the tooltip and for screen readers.
    void setName(const QString& name);
    /// The keys that do the same, for the tooltip and for screen readers. Somebody else listens to them.
    void showShortcut(const QKeySequence& shortcut);
    /// From now on the second click of a double click does nothing. What the first one did may have put
    /// another button under the pointer.
    void ignoreSecondClick() { m_ignoresSecondClick = true; }
    const QKeySequence& shownShortcut() const { return m_shownShortcut; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    struct Metrics {
        int height;
        int padding;
        double textSize;  ///< of the theme
        int symbolSize;
    };
    static Metrics metricsOf(Size size, const Theme& theme);
    QColor background() const;
    QColor foreground() const;

    Look m_look;
    Metrics m_metrics;
    QKeySequence m_shownShortcut;
    bool m_ignoresSecondClick = false;
    std::optional<Symbol> m_symbol;
    FocusRing m_focusRing;
    TextFont m_font;
};

}  // namespace vellmora
