#include "engine/file/FileInput.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <utility>

#include <qpdf/DLL.h>

namespace vellmora {

namespace {

constexpr size_t step = 4096;

constexpr auto blanks = [] {
    std::array<char, step> result{};
    result.fill(' ');
    return result;
}();

#if QPDF_MAJOR_VERSION >= 12
/// Room for a million object numbers, of three bytes each.
constexpr size_t paddingLength = size_t{3} << 20;
/// Readers look for the end of a PDF in its last 1024 bytes, libqpdf in a few more.
constexpr size_t tailLength = 2048;
/// What was cut off does not go on behind the content.
constexpr std::string_view ending = "\nendstream\nendobj\n";
#else
constexpr size_t paddingLength = 0;
constexpr size_t tailLength = 0;
constexpr std::string_view ending;
#endif

}  // namespace

FileInput::FileInput(const SnapshotReader& content)
    : m_content(content),
      m_tail(endPosition(content)),
      m_size(m_tail + std::min(tailLength, content.size())) {}

FileInput::FileInput(const SnapshotReader& content, std::string end)
    : m_content(content),
      m_end(std::move(end)),
      m_tail(endPosition(content)),
      m_size(m_tail + m_end.size()) {}

size_t FileInput::endPosition(const SnapshotReader& content) {
    return content.size() + ending.size() + paddingLength;
}

std::string_view FileInput::piece(size_t position, size_t most) const {
    const size_t end = m_content.size();
    if (position < end)
        return m_content.range(position, std::min(most, end - position));
    if (position < end + ending.size())
        return ending.substr(position - end, most);
    if (position < m_tail)
        return {blanks.data(), std::min({most, m_tail - position, blanks.size()})};
    if (!m_end.empty())
        return std::string_view(m_end).substr(position - m_tail, most);
    return m_content.range(end - (m_size - position), std::min(most, m_size - position));
}

/// Answers the position of the next line break, and goes behind it and those that follow it directly.
qpdf_offset_t FileInput::findAndSkipNextEOL() {
    constexpr std::string_view breaks = "\r\n";
    size_t found = std::string_view::npos;
    while (m_position < m_size && found == std::string_view::npos) {
        const std::string_view part = piece(m_position, step);
        const size_t place = part.find_first_of(breaks);
        if (place != std::string_view::npos)
            found = m_position + place;
        m_position += std::min(place, part.size());
    }
    const size_t result = m_position;
    while (m_position < m_size && breaks.find(piece(m_position, 1).front()) != std::string_view::npos)
        ++m_position;
    return static_cast<qpdf_offset_t>(result);
}

void FileInput::seek(qpdf_offset_t offset, int whence) {
    const auto end = static_cast<qpdf_offset_t>(m_size);
    const qpdf_offset_t origin = whence == SEEK_SET ? 0 : whence == SEEK_END ? end : tell();
    const bool isInside = offset >= -origin && offset <= end - origin;
    m_position = static_cast<size_t>(isInside ? origin + offset : end);
}

size_t FileInput::read(char* target, size_t length) {
    const size_t start = m_position;
    length = std::min(length, m_size - start);
    last_offset = static_cast<qpdf_offset_t>(start);
    for (size_t done = 0; done < length;) {
        const std::string_view part = piece(start + done, length - done);
        std::memcpy(target + done, part.data(), part.size());
        done += part.size();
    }
    m_position = start + length;
    return length;
}

void FileInput::unreadCh(char) {
    if (m_position > 0)
        --m_position;
}

}  // namespace vellmora
