#include "picture/DeflateStream.h"

#include <algorithm>
#include <array>
#include <limits>
#include <new>
#include <utility>

namespace vellmora {

namespace {

constexpr int windowBits = 15;
constexpr int memoryLevel = 9;
/// Of few bytes all lie in a smaller window, and it takes a tenth of the time to clear.
constexpr size_t fewBytes = 512;
constexpr int windowBitsForFew = 12;
constexpr int memoryLevelForFew = 6;
constexpr size_t blockSize = 1 << 16;
/// Packed objects look alike, and zlib's usual level (6) compares each with four times as many of those
/// before: twice the time for less than a thousandth of the bytes.
constexpr int textLevel = 5;
/// Deflate with a window of 32 KiB; the level named is the usual one and of no effect.
constexpr const char* zlibHeader = "\x78\x9c";

}  // namespace

void DeflateStream::End::operator()(z_stream* stream) const {
    ::deflateEnd(stream);
    delete stream;
}

DeflateStream::DeflateStream(int level, int strategy, size_t most) : m_stream(new z_stream{}) {
    m_part.checksum = ::adler32(0, nullptr, 0);
    const bool hasFew = most <= fewBytes;
    const int window = hasFew ? windowBitsForFew : windowBits;
    // Below zero: no header and no checksum.
    if (::deflateInit2(m_stream.get(), level, Z_DEFLATED, -window, hasFew ? memoryLevelForFew : memoryLevel,
                       strategy) != Z_OK)
        throw std::bad_alloc();
}

void DeflateStream::run(int flush) {
    std::array<Bytef, blockSize> block;
    do {
        m_stream->next_out = block.data();
        m_stream->avail_out = block.size();
        ::deflate(m_stream.get(), flush);
        m_part.blocks.append(reinterpret_cast<const char*>(block.data()), block.size() - m_stream->avail_out);
    } while (m_stream->avail_out == 0);
}

void DeflateStream::add(const unsigned char* bytes, size_t count) {
    m_part.checksum = ::adler32_z(m_part.checksum, bytes, count);
    m_part.length += static_cast<z_off_t>(count);
    m_stream->next_in = const_cast<Bytef*>(bytes);
    while (count > 0) {
        const size_t step = std::min<size_t>(count, std::numeric_limits<uInt>::max());
        m_stream->avail_in = static_cast<uInt>(step);
        run(Z_NO_FLUSH);
        count -= step;
    }
}

DeflatedPart DeflateStream::finish(bool isLastPart) {
    run(isLastPart ? Z_FINISH : Z_SYNC_FLUSH);
    return std::move(m_part);
}

std::string zlibStream(const std::vector<DeflatedPart>& parts) {
    std::string bytes = zlibHeader;
    uLong checksum = ::adler32(0, nullptr, 0);
    for (const DeflatedPart& part : parts) {
        bytes += part.blocks;
        checksum = ::adler32_combine(checksum, part.checksum, part.length);
    }
    for (const int shift : {24, 16, 8, 0})
        bytes += static_cast<char>(checksum >> shift);
    return bytes;
}

std::string deflated(std::string_view bytes) {
    DeflateStream stream(textLevel, Z_DEFAULT_STRATEGY, bytes.size());
    stream.add(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size());
    return zlibStream({stream.finish(true)});
}

bool isZlibStreamOf(size_t length, const std::string& bytes) {
    z_stream stream{};
    if (::inflateInit(&stream) != Z_OK)
        return false;
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes.data()));
    stream.avail_in = static_cast<uInt>(bytes.size());
    std::array<Bytef, blockSize> block;
    int status = Z_OK;
    while (status == Z_OK && stream.total_out <= length) {
        stream.next_out = block.data();
        stream.avail_out = block.size();
        status = ::inflate(&stream, Z_NO_FLUSH);
    }
    const bool isWhole = status == Z_STREAM_END && stream.avail_in == 0 && stream.total_out == length;
    ::inflateEnd(&stream);
    return isWhole;
}

}  // namespace vellmora
