#pragma once

#include "base/Rect.h"

#include <gtest/gtest.h>
#include <ostream>

#include <QString>

/// Lets failed comparisons show the text and not the bytes.
inline void PrintTo(const QString& text, std::ostream* stream) {
    *stream << '"' << text.toStdString() << '"';
}

namespace vellmora {

inline void PrintTo(const Rect& rect, std::ostream* stream) {
    *stream << '(' << rect.x << ", " << rect.y << ", " << rect.width << ", " << rect.height << ')';
}

namespace test {

inline testing::AssertionResult isNear(const Rect& a, const Rect& b, double tolerance) {
    const auto off = [tolerance](double x, double y) { return std::abs(x - y) > tolerance; };
    if (off(a.x, b.x) || off(a.y, b.y) || off(a.width, b.width) || off(a.height, b.height)) {
        return testing::AssertionFailure()
               << testing::PrintToString(a) << " is not near " << testing::PrintToString(b);
    }
    return testing::AssertionSuccess();
}

}  // namespace test
}  // namespace vellmora
