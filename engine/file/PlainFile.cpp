#include "engine/file/PlainFile.h"

#include "engine/objects/ObjectPlaces.h"

#include <algorithm>

namespace vellmora {

namespace {

constexpr std::string_view blanks = " \t\r\n\f";
constexpr size_t entryLength = 20;
/// Each is looked through for an object.
constexpr size_t mostSections = 64;
/// Where readers look for the position of the table.
constexpr size_t tailLength = 1024;
constexpr size_t longestLine = 64;
/// What most objects have room in.
constexpr size_t usualLength = 2048;
/// In a file that was made to cost time, objects lie in one another.
constexpr size_t mostTimesRead = 4;
/// Room for the keywords behind a stream, and the white space around them.
constexpr size_t longestStreamEnd = 48;

void require(bool isPlain) {
    if (!isPlain)
        throw NotPlain();
}

/// Digits of any length that a position of a file can have; the zeros before it do not count.
size_t positionIn(std::string_view digits) {
    constexpr size_t mostDigits = 18;
    require(!digits.empty() && digits.size() <= mostDigits);
    size_t value = 0;
    for (const char c : digits) {
        require(c >= '0' && c <= '9');
        value = 10 * value + static_cast<size_t>(c - '0');
    }
    return value;
}

size_t behindBlanks(std::string_view text, size_t at) {
    return std::min(text.find_first_not_of(blanks, at), text.size());
}

bool isBlank(char c) {
    return blanks.find(c) != std::string_view::npos;
}

}  // namespace

std::optional<PlainFile> PlainFile::open(const SnapshotReader& content) {
    try {
        PlainFile file(content);
        require(file.upTo(0, 7) == "%PDF-1." || file.upTo(0, 7) == "%PDF-2.");
        std::optional<size_t> table = file.lastTable();
        for (; table; table = file.readTable(*table)) {
        }
        return file;
    } catch (const NotPlain&) {
        return std::nullopt;
    }
}

std::string_view PlainFile::upTo(size_t position, size_t length) const {
    require(position < m_content->size());
    return m_content->range(position, std::min(length, m_content->size() - position));
}

size_t PlainFile::lastTable() const {
    constexpr std::string_view keyword = "startxref";
    const size_t length = std::min(tailLength, m_content->size());
    const std::string_view tail = m_content->range(m_content->size() - length, length);
    const size_t found = tail.rfind(keyword);
    require(found != std::string_view::npos);
    const size_t begin = behindBlanks(tail, found + keyword.size());
    const size_t end = std::min(tail.find_first_of(blanks, begin), tail.size());
    const size_t mark = behindBlanks(tail, end);
    require(tail.substr(mark).starts_with("%%EOF") && behindBlanks(tail, mark + 5) == tail.size());
    return positionIn(tail.substr(begin, end - begin));
}

/// The line without its end.
std::string_view PlainFile::line(size_t position) const {
    const std::string_view text = upTo(position, longestLine);
    const size_t end = text.find_first_of("\r\n");
    require(end != std::string_view::npos);
    return text.substr(0, end);
}

std::optional<size_t> PlainFile::readTable(size_t position) {
    require(line(position).substr(0, 4) == "xref");
    position += 4;
    for (;;) {
        position += behindBlanks(upTo(position, longestLine), 0);
        const std::string_view text = line(position);
        if (text.starts_with("trailer"))
            return readTrailer(position + 7);
        const size_t space = text.find(' ');
        require(space != std::string_view::npos);
        const size_t end = text.find_last_not_of(' ') + 1;
        Section section{plainNumber(text.substr(0, space)),
                        plainNumber(text.substr(space + 1, end - space - 1)), 0};
        require(section.first >= 0 && section.count >= 0 && m_sections.size() < mostSections);
        require(section.first + section.count <= greatestObjectNumber + 1);
        section.position = position + text.size();
        section.position += behindBlanks(upTo(section.position, longestLine), 0);
        m_size = std::max(m_size, section.first + section.count);
        m_sections.push_back(section);
        position = section.position + static_cast<size_t>(section.count) * entryLength;
    }
}

std::optional<size_t> PlainFile::readTrailer(size_t position) {
    PlainObject trailer;
    trailer.readValue(upTo(position, size_t{1} << 16));
    require(trailer.isDictionary() && trailer.entry("/Encrypt").empty() && trailer.entry("/XRefStm").empty());
    if (m_catalog == 0) {
        m_catalog = plainReference(trailer.entry("/Root"));
        require(m_catalog > 0);
    }
    const std::string_view previous = trailer.entry("/Prev");
    if (previous.empty())
        return std::nullopt;
    // Tables in a circle have sections without end.
    require(m_sections.size() < mostSections);
    m_sections.push_back({});
    return positionIn(previous);
}

std::optional<std::string_view> PlainFile::entry(int number) const {
    for (const Section& section : m_sections) {
        if (number < section.first || number - section.first >= section.count)
            continue;
        const size_t place = static_cast<size_t>(number - section.first) * entryLength;
        const std::string_view entry = upTo(section.position + place, entryLength);
        require(entry.size() == entryLength && entry[10] == ' ' && entry[16] == ' ' && isBlank(entry[18]) &&
                isBlank(entry[19]));
        if (entry[17] == 'f')
            return std::nullopt;
        require(entry.substr(11, 5) == "00000" && entry[17] == 'n');
        return entry;
    }
    return std::nullopt;
}

size_t PlainFile::position(int number) const {
    const std::optional<std::string_view> found = entry(number);
    require(found.has_value());
    return positionIn(found->substr(0, 10));
}

void PlainFile::read(int number, PlainObject& object) const {
    const size_t start = position(number);
    for (size_t length = usualLength;; length *= 8) {
        const std::string_view text = upTo(start, length);
        try {
            object.read(text, number);
            m_bytesRead += object.length();
            require(m_bytesRead / mostTimesRead <= m_content->size());
            return;
        } catch (const TextEnds&) {
            require(text.size() == length);
        }
    }
}

std::string_view PlainFile::statedLength(const PlainObject& stream) const {
    const std::string_view stated = stream.entry("/Length");
    const int number = plainReference(stated);
    if (number <= 0) {
        require(plainNumber(stated) >= 0);
        return stated;
    }
    PlainObject length;
    read(number, length);
    require(plainNumber(length.value()) >= 0);
    return length.value();
}

PlainFile::Range PlainFile::data(int number, const PlainObject& stream) const {
    require(stream.isStream());
    const size_t keywordEnd = position(number) + stream.length();
    const std::string_view lineEnd = upTo(keywordEnd, 2);
    require(lineEnd.starts_with('\n') || lineEnd == "\r\n");
    const Range data{keywordEnd + (lineEnd.front() == '\n' ? 1 : 2), positionIn(statedLength(stream))};
    const std::string_view rest = upTo(data.offset + data.length, longestStreamEnd);
    const size_t keyword = behindBlanks(rest, 0);
    constexpr std::string_view endOfData = "endstream";
    require(rest.substr(keyword).starts_with(endOfData));
    require(rest.substr(behindBlanks(rest, keyword + endOfData.size())).starts_with("endobj"));
    return data;
}

}  // namespace vellmora
