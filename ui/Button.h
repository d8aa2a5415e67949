#pragma once

#include "ui/FocusRing.h"
#include "ui/Symbols.h"
#include "ui/Theme.h"

#include <optional>

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
    /// A button that shows a symbol and no text. A screen reader says `name`.
    Button(Symbol symbol, const QString& name, Look look, Size size, const Theme& theme, QWidget* parent);

    static int heightOf(Size size);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    QColor background() const;
    QColor foreground() const;

    Look m_look;
    Size m_size;
    std::optional<Symbol> m_symbol;
    FocusRing m_focusRing;
};

}  // namespace vellmora
