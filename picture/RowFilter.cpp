#include "picture/RowFilter.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

namespace vellmora {

namespace {

/// The neighbour that is nearest to left + above − aboveLeft. In short numbers and without branches, so that
/// the compiler works on many bytes at once.
uchar paeth(uchar left, uchar above, uchar aboveLeft) {
    const auto toLeft = static_cast<short>(std::abs(short(above - aboveLeft)));
    const auto toAbove = static_cast<short>(std::abs(short(left - aboveLeft)));
    const auto toAboveLeft = static_cast<short>(std::abs(short(left + above - 2 * aboveLeft)));
    const uchar nearer = toAbove <= toAboveLeft ? above : aboveLeft;
    return ((toLeft <= toAbove) & (toLeft <= toAboveLeft)) ? left : nearer;
}

/// Sum of the bytes taken as signed numbers without their sign.
quint64 magnitude(const uchar* bytes, size_t count) {
    constexpr size_t block = 256;  // whose sum fits 16 bits
    quint64 sum = 0;
    for (size_t first = 0; first < count; first += block) {
        const size_t end = std::min(first + block, count);
        quint16 part = 0;
        for (size_t i = first; i < end; ++i)
            part += std::min(bytes[i], static_cast<uchar>(-bytes[i]));
        sum += part;
    }
    return sum;
}

}  // namespace

RowFilter::RowFilter(size_t bytesPerPixel, size_t bytesPerRow)
    : m_bytesPerPixel(bytesPerPixel),
      m_bytesPerRow(bytesPerRow),
      m_row(bytesPerPixel + bytesPerRow),
      m_above(bytesPerPixel + bytesPerRow),
      m_attempt(1 + bytesPerRow),
      m_best(1 + bytesPerRow) {}

template <typename Predict>
void RowFilter::attempt(uchar number, Predict predict) {
    const uchar* left = m_row.data();
    const uchar* aboveLeft = m_above.data();
    const uchar* row = left + m_bytesPerPixel;
    const uchar* above = aboveLeft + m_bytesPerPixel;
    const size_t count = m_bytesPerRow;
    uchar* bytes = m_attempt.data() + 1;
    for (size_t i = 0; i < count; ++i)
        bytes[i] = static_cast<uchar>(row[i] - predict(left[i], above[i], aboveLeft[i]));
    const quint64 size = magnitude(bytes, count);
    if (size >= m_smallest)
        return;
    m_smallest = size;
    m_attempt[0] = number;
    m_best.swap(m_attempt);
}

const std::vector<uchar>& RowFilter::filtered() {
    m_smallest = std::numeric_limits<quint64>::max();
    attempt(0, [](uchar, uchar, uchar) { return uchar(0); });
    attempt(1, [](uchar left, uchar, uchar) { return left; });
    attempt(2, [](uchar, uchar above, uchar) { return above; });
    attempt(3, [](uchar left, uchar above, uchar) { return static_cast<uchar>((left + above) / 2); });
    attempt(4, paeth);
    return m_best;
}

}  // namespace vellmora
