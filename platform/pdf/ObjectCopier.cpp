#include "platform/pdf/ObjectCopier.h"

namespace vellmora {

QPDFObjectHandle ObjectCopier::copy(QPDFObjectHandle object, int levels) {
    if (levels == 0 || object.isDictionaryOfType("/Page") || object.isDictionaryOfType("/Pages"))
        return QPDFObjectHandle::newNull();
    if (object.isIndirect())
        return m_output.copyForeignObject(object);
    if (object.isDictionary()) {
        QPDFObjectHandle result = QPDFObjectHandle::newDictionary();
        for (const auto& [key, value] : object.ditems())
            result.replaceKey(key, copy(value, levels - 1));
        return result;
    }
    if (object.isArray()) {
        QPDFObjectHandle result = QPDFObjectHandle::newArray();
        for (const QPDFObjectHandle& item : object.aitems())
            result.appendItem(copy(item, levels - 1));
        return result;
    }
    return object.shallowCopy();
}

}  // namespace vellmora
