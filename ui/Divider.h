#pragma once

#include "ui/Theme.h"

#include <QPainter>
#include <QWidget>

namespace vellmora {

/// A line of one point between two parts of the window.
class Divider : public QWidget {
public:
    Divider(Qt::Orientation orientation, QWidget* parent) : QWidget(parent) {
        if (orientation == Qt::Horizontal)
            setFixedHeight(1);
        else
            setFixedWidth(1);
    }

protected:
    void paintEvent(QPaintEvent*) override { QPainter(this).fillRect(rect(), Theme::divider(palette())); }
};

}  // namespace vellmora
