#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace vellmora {

/// Tells contents apart, within one run of the program: a fast sum of 64 bits of bytes that come in pieces.
/// It does not depend on how they are cut. No protection against somebody who makes two contents of one sum.
class ContentDigest {
public:
    void add(std::string_view bytes);
    friend bool operator==(const ContentDigest& a, const ContentDigest& b);

private:
    static constexpr size_t blockSize = size_t{16} << 10;

    size_t pending() const { return m_size % blockSize; }
    size_t sum() const;

    uint64_t m_size = 0;
    size_t m_sum = 1;                       ///< of the whole blocks
    std::array<char, blockSize> m_block{};  ///< begins with the bytes behind them
};

}  // namespace vellmora
