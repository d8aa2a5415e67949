#pragma once

#include <vector>

#include <QtGlobal>

namespace vellmora {

/// Applies the filters of PNG (W3C PNG 9.2) to rows of bytes: to each row the one whose bytes are smallest,
/// taken as signed numbers. Gradients and photographs compress far better for it.
class RowFilter {
public:
    /// `bytesPerPixel` whole bytes; `bytesPerRow` without the filter's number.
    RowFilter(size_t bytesPerPixel, size_t bytesPerRow);

    /// Where the next row's bytes go.
    uchar* row() { return m_row.data() + m_bytesPerPixel; }
    /// The filter's number and the filtered bytes of the row that was put there; valid until the next call.
    const std::vector<uchar>& filtered();
    /// Makes the row that was put there the one above the next.
    void advance() { m_row.swap(m_above); }

private:
    template <typename Predict>
    void attempt(uchar number, Predict predict);

    size_t m_bytesPerPixel;
    size_t m_bytesPerRow;
    std::vector<uchar> m_row;    ///< with a pixel of zeros before it
    std::vector<uchar> m_above;  ///< the same
    std::vector<uchar> m_attempt;
    std::vector<uchar> m_best;
    quint64 m_smallest = 0;
};

}  // namespace vellmora
