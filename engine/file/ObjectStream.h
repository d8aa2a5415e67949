#pragma once

#include "engine/objects/Qpdf.h"

#include <map>
#include <set>
#include <string>
#include <vector>

namespace vellmora {

/// The members of an object stream (ISO 32000-2, 7.5.7) as text. One that cannot be decoded has none.
class ObjectStream {
public:
    explicit ObjectStream(QPDFObjectHandle stream);

    /// The members' numbers in their order.
    const std::vector<int>& numbers() const { return m_numbers; }
    /// Empty for a number that is not a member's.
    std::string textOf(int number) const;

private:
    std::string m_data;
    std::vector<int> m_numbers;
    std::map<int, size_t> m_positions;
    std::set<size_t> m_borders;  ///< where a member begins
};

}  // namespace vellmora
