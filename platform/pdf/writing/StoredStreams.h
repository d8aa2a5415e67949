#pragma once

#include "platform/pdf/Qpdf.h"

#include <map>
#include <optional>
#include <string_view>

namespace vellmora {

/// The bytes of streams that are the same in the output as in a source file, by their object in the output.
/// They point into the source's memory.
class StoredStreams {
public:
    void add(const QPDFObjectHandle& stream, std::string_view bytes) { m_bytes[stream.getObjGen()] = bytes; }

    std::optional<std::string_view> bytesOf(const QPDFObjectHandle& stream) const {
        const auto found = m_bytes.find(stream.getObjGen());
        return found == m_bytes.end() ? std::nullopt : std::optional(found->second);
    }

private:
    std::map<QPDFObjGen, std::string_view> m_bytes;
};

}  // namespace vellmora
