#pragma once

#include <QScrollBar>

namespace vellmora {

/// A scroll bar without arrows and groove: a rounded handle on the ground of its surroundings.
class ThinScrollBar : public QScrollBar {
    Q_OBJECT

public:
    /// Narrow enough to lie within the sidebar's padding, so that the boxes are of one width whether it is
    /// there or not.
    static constexpr int thickness = 12;

    explicit ThinScrollBar(QWidget* parent);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QRectF handle() const;
};

}  // namespace vellmora
