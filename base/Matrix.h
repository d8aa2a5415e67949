#pragma once

#include "base/Rect.h"

namespace vellmora {

/// An affine map of the plane, as a PDF has it: x' = m11·x + m21·y + dx, y' = m12·x + m22·y + dy.
///
/// It computes as `QTransform` does, which lies in a library that the documents' processes would load for
/// nothing else, with some thirty others.
struct Matrix {
    double m11 = 1;
    double m12 = 0;
    double m21 = 0;
    double m22 = 1;
    double dx = 0;
    double dy = 0;

    static Matrix translation(double dx, double dy) { return {1, 0, 0, 1, dx, dy}; }
    /// About the origin, counterclockwise where y points upwards. Degrees: 0, 90, 180 or 270.
    static Matrix rotation(int degrees);

    /// But for what computing adds to it.
    bool isIdentity() const;
    /// Of a matrix that does not squeeze the plane into a line.
    Matrix inverted() const;
    Point map(Point p) const { return {m11 * p.x + m21 * p.y + dx, m12 * p.x + m22 * p.y + dy}; }
    /// `*this` first, then `next`.
    Matrix operator*(const Matrix& next) const;
    Matrix& operator*=(const Matrix& next) { return *this = *this * next; }
};

/// The bounding box of the mapped rectangle.
Rect mapRect(const Matrix& matrix, const Rect& rect);

}  // namespace vellmora
