#pragma once

#include "ui/SoftShadow.h"
#include "ui/Symbols.h"
#include "ui/TextLabel.h"
#include "ui/Theme.h"

#include <QWidget>

namespace vellmora {

/// The framed invitation to drop a PDF. The widget is larger than the frame that it shows, by `shadowMargin`
/// above and below and by `sidePadding` left and right. The frame's shadow lies in that room.
class DropZone : public QWidget {
    Q_OBJECT

public:
    static constexpr int sidePadding = 18;
    static constexpr int shadowMargin = 26;

    DropZone(const Theme& theme, QWidget* parent);

    /// `isTargeted` is true while the user drags something over the window.
    void setTargeted(bool isTargeted);

    /// Height of the frame without the room for its shadow.
    int frameHeight() const { return sizeHint().height() - 2 * shadowMargin; }
    /// Puts the zone's frame, side padding included, into `area`.
    void setFrameArea(const QRect& area);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    SymbolView* m_symbol;
    TextLabel* m_title;
    SoftShadow m_shadow;
    bool m_isTargeted = false;
};

}  // namespace vellmora
