#include "base/Matrix.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace vellmora {

namespace {

bool isNothing(double value) {
    return std::abs(value) <= 1e-12;
}

bool isUpright(const Matrix& m) {
    return isNothing(m.m12) && isNothing(m.m21);
}

bool isTranslation(const Matrix& m) {
    return isUpright(m) && isNothing(m.m11 - 1) && isNothing(m.m22 - 1);
}

Rect scaled(const Matrix& m, const Rect& rect) {
    const double width = m.m11 * rect.width;
    const double height = m.m22 * rect.height;
    return {m.m11 * rect.x + m.dx + std::min(width, 0.0), m.m22 * rect.y + m.dy + std::min(height, 0.0),
            std::abs(width), std::abs(height)};
}

}  // namespace

Matrix Matrix::rotation(int degrees) {
    switch (degrees) {
        case 90:
            return {0, 1, -1, 0, 0, 0};
        case 180:
            return {-1, 0, 0, -1, 0, 0};
        case 270:
            return {0, -1, 1, 0, 0, 0};
        default:
            return {};
    }
}

bool Matrix::isIdentity() const {
    return isTranslation(*this) && isNothing(dx) && isNothing(dy);
}

Matrix Matrix::inverted() const {
    const double determinant = m11 * m22 - m12 * m21;
    return {m22 / determinant,
            -m12 / determinant,
            -m21 / determinant,
            m11 / determinant,
            (m21 * dy - m22 * dx) / determinant,
            (m12 * dx - m11 * dy) / determinant};
}

Matrix Matrix::operator*(const Matrix& next) const {
    return {m11 * next.m11 + m12 * next.m21,         m11 * next.m12 + m12 * next.m22,
            m21 * next.m11 + m22 * next.m21,         m21 * next.m12 + m22 * next.m22,
            dx * next.m11 + dy * next.m21 + next.dx, dx * next.m12 + dy * next.m22 + next.dy};
}

Rect mapRect(const Matrix& matrix, const Rect& rect) {
    if (isTranslation(matrix))
        return rect.translated(matrix.dx, matrix.dy);
    if (isUpright(matrix))
        return scaled(matrix, rect);
    const std::array corners{matrix.map({rect.minX(), rect.minY()}), matrix.map({rect.maxX(), rect.minY()}),
                             matrix.map({rect.maxX(), rect.maxY()}), matrix.map({rect.minX(), rect.maxY()})};
    const auto [left, right] =
        std::minmax_element(corners.begin(), corners.end(), [](Point a, Point b) { return a.x < b.x; });
    const auto [bottom, top] =
        std::minmax_element(corners.begin(), corners.end(), [](Point a, Point b) { return a.y < b.y; });
    return {left->x, bottom->y, right->x - left->x, top->y - bottom->y};
}

}  // namespace vellmora
