#include "base/ContentDigest.h"

#include <algorithm>
#include <cstring>

#include <QHashFunctions>

namespace vellmora {

void ContentDigest::add(std::string_view bytes) {
    while (!bytes.empty()) {
        const size_t filled = pending();
        const size_t count = std::min(bytes.size(), blockSize - filled);
        if (count == blockSize) {
            m_sum = qHashBits(bytes.data(), blockSize, m_sum);
        } else {
            std::memcpy(m_block.data() + filled, bytes.data(), count);
            if (filled + count == blockSize)
                m_sum = qHashBits(m_block.data(), blockSize, m_sum);
        }
        m_size += count;
        bytes.remove_prefix(count);
    }
}

size_t ContentDigest::sum() const {
    return qHashBits(m_block.data(), pending(), m_sum);
}

bool operator==(const ContentDigest& a, const ContentDigest& b) {
    return a.m_size == b.m_size && a.sum() == b.sum();
}

}  // namespace vellmora
