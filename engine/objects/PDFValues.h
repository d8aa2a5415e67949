#pragma once

#include "base/Matrix.h"
#include "engine/objects/Qpdf.h"

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace vellmora {

// Values of a file in numbers. What is damaged counts as absent.

/// Read here and not by libqpdf, which takes the decimal point of the process' locale.
std::optional<double> numberOf(QPDFObjectHandle object);

double numberOr(const QPDFObjectHandle& object, double fallback);

/// Degrees as a file states a turn, any multiple of 90, as 0, 90, 180 or 270; anything else counts as 0.
int rotationOf(double degrees);
int rotationOf(const QPDFObjectHandle& object);

/// All numbers of an array; empty where it is none or holds anything else.
std::vector<double> numbersOf(QPDFObjectHandle array);

/// The rectangle between two opposite corners, in whatever order they come; it may be empty.
std::optional<Rect> rectangleOf(const QPDFObjectHandle& array);

/// A box of a page between two opposite corners, clipped to the numbers that a file may hold. Nothing where
/// it is empty, or the array states none.
std::optional<Rect> boxOf(std::array<double, 4> edges);
std::optional<Rect> boxOf(QPDFObjectHandle array);

/// The array that stands for a rectangle.
QPDFObjectHandle arrayOf(const Rect& rect);
/// The same in words.
std::string textOf(const Rect& rect);

/// The array that stands for a matrix.
QPDFObjectHandle arrayOf(const Matrix& matrix);

/// The identity where the array is no matrix.
Matrix matrixOf(const QPDFObjectHandle& array);

/// The x and y of each point in turn.
std::vector<Point> pointsOf(const QPDFObjectHandle& array);

}  // namespace vellmora
