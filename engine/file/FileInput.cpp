#include "engine/file/FileInput.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace vellmora {

/// Answers the position of the next line break, and goes behind it and those that follow it directly.
qpdf_offset_t FileInput::findAndSkipNextEOL() {
    constexpr size_t step = 4096;
    constexpr std::string_view breaks = "\r\n";
    const size_t end = m_content.size();
    size_t found = std::string_view::npos;
    while (m_position < end && found == std::string_view::npos) {
        const std::string_view part = m_content.range(m_position, std::min(step, end - m_position));
        const size_t place = part.find_first_of(breaks);
        if (place != std::string_view::npos)
            found = m_position + place;
        m_position += std::min(place, part.size());
    }
    const size_t result = m_position;
    while (m_position < end && breaks.find(m_content.range(m_position, 1).front()) != std::string_view::npos)
        ++m_position;
    return static_cast<qpdf_offset_t>(result);
}

void FileInput::seek(qpdf_offset_t offset, int whence) {
    const auto end = static_cast<qpdf_offset_t>(m_content.size());
    const qpdf_offset_t origin = whence == SEEK_SET ? 0 : whence == SEEK_END ? end : tell();
    const bool isInside = offset >= -origin && offset <= end - origin;
    m_position = static_cast<size_t>(isInside ? origin + offset : end);
}

size_t FileInput::read(char* target, size_t length) {
    const size_t start = m_position;
    length = std::min(length, m_content.size() - start);
    last_offset = static_cast<qpdf_offset_t>(start);
    if (length == 0)
        return 0;
    std::memcpy(target, m_content.range(start, length).data(), length);
    m_position = start + length;
    return length;
}

void FileInput::unreadCh(char) {
    if (m_position > 0)
        --m_position;
}

}  // namespace vellmora
