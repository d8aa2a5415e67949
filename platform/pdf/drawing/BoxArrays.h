#pragma once

#include "platform/geometry/Rect.h"
#include "platform/pdf/PDFValues.h"

#include <array>
#include <map>

namespace vellmora {

/// The arrays that stand for the boxes of pages: one for all pages of a size, however many there are.
class BoxArrays {
public:
    const QPDFObjectHandle& of(const Rect& box) {
        const auto [entry, isNew] = m_arrays.try_emplace({box.x, box.y, box.width, box.height});
        if (isNew)
            entry->second = arrayOf(box);
        return entry->second;
    }

private:
    std::map<std::array<double, 4>, QPDFObjectHandle> m_arrays;
};

}  // namespace vellmora
