#pragma once

#include <cstddef>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <zlib.h>

namespace vellmora {

/// A part of a zlib stream: whole deflate blocks that end on a byte.
struct DeflatedPart {
    std::string blocks;
    uLong checksum = 0;  ///< Adler-32 of the bytes that went in
    z_off_t length = 0;  ///< of the bytes that went in
};

/// Compresses one part of a zlib stream, so that parts can be made side by side.
class DeflateStream {
public:
    /// Level and strategy of zlib. At most `most` bytes will be added: few take little time to begin with.
    DeflateStream(int level, int strategy, size_t most = std::numeric_limits<size_t>::max());

    void add(const unsigned char* bytes, size_t count);
    /// To be called once, at the end.
    DeflatedPart finish(bool isLastPart);

private:
    void run(int flush);

    struct End {
        void operator()(z_stream* stream) const;
    };
    std::unique_ptr<z_stream, End> m_stream;
    DeflatedPart m_part;
};

/// The zlib stream (RFC 1950) of consecutive parts.
std::string zlibStream(const std::vector<DeflatedPart>& parts);

/// Text, as of objects and page contents, as a zlib stream.
std::string deflated(std::string_view bytes);

/// Whether the bytes are one whole zlib stream that unpacks to `length` bytes.
bool isZlibStreamOf(size_t length, const std::string& bytes);

}  // namespace vellmora
