// The library's metadata file with any bytes in it.

#include "library/StampPresetJson.h"

#include <cstdint>
#include <cstdlib>

using namespace vellmora;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const auto presets = decodePresets(
        QByteArray::fromRawData(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size)));
    if (!presets)
        return 0;
    // What was read is written so that it can be read again, and means the same.
    if (decodePresets(encodePresets(*presets)) != presets)
        std::abort();
    return 0;
}
