#pragma once

#include "platform/pdf/Qpdf.h"

#include <vector>

namespace vellmora {

/// Numbers the objects of a new file in the order in which it refers to them, from 1 on. What nothing refers
/// to gets no number, and is not written.
class ObjectNumbers {
public:
    /// The number of an indirect object of the output.
    int of(const QPDFObjectHandle& object);
    /// A number for something that is not an object of the output.
    int reserve();

    int count() const { return static_cast<int>(m_objects.size()); }
    /// Not initialized where the number was reserved.
    const QPDFObjectHandle& object(int number) const { return m_objects[static_cast<size_t>(number) - 1]; }

private:
    std::vector<int> m_numbers;  ///< by the number in the output as it is put together; 0 for none so far
    std::vector<QPDFObjectHandle> m_objects;
};

}  // namespace vellmora
