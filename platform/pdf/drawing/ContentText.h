#pragma once

#include <string>

#include <QTransform>

namespace vellmora {

/// A number as a content stream has it: plain decimal with a full stop, at most six places, no exponent.
std::string pdfNumber(double value);

/// "q … cm /name Do Q": paints the named object through the matrix.
std::string paintObject(const std::string& name, const QTransform& matrix);

}  // namespace vellmora
