#pragma once

#include "engine/objects/Qpdf.h"

#include <map>
#include <memory>
#include <utility>

namespace vellmora {

/// What was made of objects of files, once for each however often it is met. Of direct objects only the last
/// is remembered. The files must live as long as the cache.
template <typename Value>
class ObjectCache {
public:
    using Pointer = std::shared_ptr<const Value>;

    /// `make` returns the value of an object that is new.
    template <typename Make>
    Pointer get(const QPDFObjectHandle& object, Make make) {
        if (!object.isIndirect()) {
            if (!m_lastValue || !m_lastDirect.isSameObjectAs(object)) {
                m_lastValue = std::make_shared<const Value>(make());
                m_lastDirect = object;
            }
            return m_lastValue;
        }
        Pointer& value = m_values[{object.getOwningQPDF(), object.getObjGen()}];
        if (!value)
            value = std::make_shared<const Value>(make());
        return value;
    }

private:
    std::map<std::pair<QPDF*, QPDFObjGen>, Pointer> m_values;
    QPDFObjectHandle m_lastDirect;
    Pointer m_lastValue;
};

}  // namespace vellmora
