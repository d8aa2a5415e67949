#pragma once

#include "base/Matrix.h"

#include <string>
#include <string_view>

namespace vellmora {

/// The number that a text of a PDF begins with, whatever decimal point the process' locale has; 0 where there
/// is none.
double parsedNumber(std::string_view text);

/// The greatest whole number that every reader takes (ISO 32000-1, annex C).
constexpr double greatestNumber = 2147483647;

/// A number as a file has it: plain decimal with a full stop, at most six places, no exponent. What is
/// greater than readers take becomes the greatest number, what is none becomes 0.
std::string pdfNumber(double value);

/// "q … cm /name Do Q": paints the named object through the matrix.
std::string paintObject(const std::string& name, const Matrix& matrix);

}  // namespace vellmora
