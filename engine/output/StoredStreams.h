#pragma once

#include "base/SnapshotReader.h"
#include "engine/objects/Qpdf.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string_view>

namespace vellmora {

/// A range of a source file, which must outlive it.
struct StoredBytes {
    const SnapshotReader* file = nullptr;
    size_t offset = 0;
    size_t length = 0;

    /// Throws `Error` where it cannot be read.
    std::string_view bytes() const { return file->range(offset, length); }
};

/// What becomes of a stream's bytes.
enum class Packing : std::uint8_t { asTheyAre, compress };

/// What a source has uncompressed for all its size would take seconds.
constexpr size_t largestToCompress = 16 << 20;

/// Where the bytes of streams are that are the same in the output as in a source file, by their object in the
/// output.
class StoredStreams {
public:
    void add(const QPDFObjectHandle& stream, const StoredBytes& bytes) {
        m_bytes[stream.getObjGen()] = bytes;
    }

    std::optional<StoredBytes> find(const QPDFObjectHandle& stream) const {
        const auto found = m_bytes.find(stream.getObjGen());
        return found == m_bytes.end() ? std::nullopt : std::optional(found->second);
    }

private:
    std::map<QPDFObjGen, StoredBytes> m_bytes;
};

}  // namespace vellmora
