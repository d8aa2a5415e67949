#include "platform/pdf/writing/ObjectNumbers.h"

#include <algorithm>

namespace vellmora {

int ObjectNumbers::of(const QPDFObjectHandle& object) {
    const auto place = static_cast<size_t>(object.getObjGen().getObj());
    if (place >= m_numbers.size())
        m_numbers.resize(std::max(place + 1, 2 * m_numbers.size()));
    int& number = m_numbers[place];
    if (number == 0) {
        m_objects.push_back(object);
        number = count();
    }
    return number;
}

int ObjectNumbers::reserve() {
    m_objects.emplace_back();
    return count();
}

}  // namespace vellmora
