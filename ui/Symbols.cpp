#include "ui/Symbols.h"

#include <cmath>
#include <initializer_list>
#include <numbers>

#include <QPainterPath>

namespace vellmora {

namespace {

// All symbols are drawn on a grid of 24 × 24 units, y downwards.
constexpr double gridSize = 24;
constexpr double lineWeight = 1.6;

void addLine(QPainterPath& path, std::initializer_list<QPointF> points) {
    const auto* point = points.begin();
    path.moveTo(*point);
    for (++point; point != points.end(); ++point)
        path.lineTo(*point);
}

void addPage(QPainterPath& path) {
    addLine(path,
            {{14, 2.5}, {5.5, 2.5}, {5.5, 21.5}, {18.5, 21.5}, {18.5, 7}, {14, 2.5}, {14, 7}, {18.5, 7}});
}

void addStar(QPainterPath& path, QPointF centre, double radius) {
    constexpr int corners = 10;
    for (int i = 0; i <= corners; ++i) {
        const double angle = std::numbers::pi * (2.0 * i / corners - 0.5);
        const double length = i % 2 == 0 ? radius : radius * 0.45;
        const QPointF corner = centre + QPointF(std::cos(angle), std::sin(angle)) * length;
        if (i == 0)
            path.moveTo(corner);
        else
            path.lineTo(corner);
    }
}

/// The edge of a sheet that lies behind another one at its lower left.
void addSheetBehind(QPainterPath& path, const QRectF& front) {
    addLine(path, {front.topLeft() + QPointF(4, -3), front.topRight() + QPointF(4, -3),
                   front.bottomRight() + QPointF(4, -4)});
}

void addLandscape(QPainterPath& path, const QRectF& frame) {
    path.addRoundedRect(frame, 2, 2);
    const auto at = [&frame](double x, double y) {
        return QPointF(frame.x() + frame.width() * x, frame.y() + frame.height() * y);
    };
    path.addEllipse(at(0.3, 0.33), 1.4, 1.4);
    addLine(path, {at(0.02, 0.85), at(0.33, 0.58), at(0.55, 0.8), at(0.74, 0.5), at(0.98, 0.8)});
}

QPainterPath documentPath() {
    QPainterPath path;
    addPage(path);
    addLine(path, {{9, 11.5}, {15, 11.5}});
    addLine(path, {{9, 14.5}, {15, 14.5}});
    addLine(path, {{9, 17.5}, {13, 17.5}});
    return path;
}

QPainterPath starOnSquaresPath() {
    QPainterPath path;
    const QRectF front(2.5, 6.5, 15, 15);
    path.addRoundedRect(front, 2, 2);
    addSheetBehind(path, front);
    addStar(path, front.center() + QPointF(0, 0.5), 4.8);
    return path;
}

QPainterPath photoOnRectanglePath() {
    QPainterPath path;
    const QRectF front(2.5, 8, 15, 12.5);
    addLandscape(path, front);
    addSheetBehind(path, front);
    return path;
}

QPainterPath photoPath() {
    QPainterPath path;
    addLandscape(path, QRectF(2.5, 4.5, 19, 15));
    return path;
}

QPainterPath trashPath() {
    QPainterPath path;
    addLine(path, {{4, 6}, {20, 6}});
    addLine(path, {{9, 6}, {9, 3.5}, {15, 3.5}, {15, 6}});
    addLine(path, {{6, 6}, {7, 20.5}, {17, 20.5}, {18, 6}});
    addLine(path, {{10, 10}, {10.3, 16.5}});
    addLine(path, {{14, 10}, {13.7, 16.5}});
    return path;
}

QPainterPath trayArrowDownPath() {
    QPainterPath path;
    addLine(path, {{6.5, 9}, {3, 14}, {3, 20.5}, {21, 20.5}, {21, 14}, {17.5, 9}});
    addLine(path, {{3, 14}, {8.5, 14}, {9.8, 16.5}, {14.2, 16.5}, {15.5, 14}, {21, 14}});
    addLine(path, {{12, 2.5}, {12, 11.5}});
    addLine(path, {{8.8, 8.4}, {12, 11.6}, {15.2, 8.4}});
    return path;
}

QPainterPath documentArrowUpPath() {
    QPainterPath path;
    addLine(path, {{10.5, 21.5}, {4.5, 21.5}, {4.5, 2.5}, {12.5, 2.5}, {17, 7}, {17, 10}});
    addLine(path, {{12.5, 2.5}, {12.5, 7}, {17, 7}});
    path.addEllipse(QPointF(17, 17.2), 4.8, 4.8);
    addLine(path, {{17, 19.6}, {17, 14.9}});
    addLine(path, {{15.1, 16.7}, {17, 14.8}, {18.9, 16.7}});
    return path;
}

QPainterPath pathOf(Symbol symbol) {
    switch (symbol) {
        case Symbol::document:
            return documentPath();
        case Symbol::starOnSquares:
            return starOnSquaresPath();
        case Symbol::photoOnRectangle:
            return photoOnRectanglePath();
        case Symbol::photo:
            return photoPath();
        case Symbol::trash:
            return trashPath();
        case Symbol::trayArrowDown:
            return trayArrowDownPath();
        case Symbol::documentArrowUp:
            return documentArrowUpPath();
    }
    return {};
}

}  // namespace

void drawSymbol(QPainter& painter, Symbol symbol, const QRectF& area, const QColor& color) {
    const double side = qMin(area.width(), area.height());
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(area.center() - QPointF(side, side) / 2);
    painter.scale(side / gridSize, side / gridSize);
    painter.setPen(QPen(color, lineWeight, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    painter.drawPath(pathOf(symbol));
    painter.restore();
}

}  // namespace vellmora
