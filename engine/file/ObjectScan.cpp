#include "engine/file/ObjectScan.h"

#include "engine/objects/Characters.h"

#include <algorithm>
#include <charconv>
#include <optional>

namespace vellmora {

namespace {

constexpr std::string_view space{" \t\r\n\f\0", 6};
constexpr std::string_view delimiters = "()<>[]{}/%";
constexpr size_t longestHeader = 40;

/// Takes blanks and then digits from the end of the text; the digits must be a number.
std::optional<int> takeLastNumber(std::string_view& text) {
    const size_t end = text.find_last_not_of(space);
    if (end == std::string_view::npos || end + 1 == text.size())
        return std::nullopt;
    text = text.substr(0, end + 1);
    const size_t begin = text.find_last_not_of("0123456789") + 1;
    int value = 0;
    const auto parsed = std::from_chars(text.data() + begin, text.data() + text.size(), value);
    if (begin == text.size() || parsed.ec != std::errc())
        return std::nullopt;
    text = text.substr(0, begin);
    return value;
}

struct ObjectHeader {
    int number;
    int generation;
    size_t position;
};

/// The number and the generation that stand before a keyword; `end` is behind it.
std::optional<ObjectHeader> numbersBefore(std::string_view file, size_t keyword, size_t end) {
    if (end < file.size() && !isOneOf(space, file[end]) && !isOneOf(delimiters, file[end]))
        return std::nullopt;
    const size_t begin = keyword - std::min(keyword, longestHeader);
    std::string_view before = file.substr(begin, keyword - begin);
    const auto generation = takeLastNumber(before);
    const auto number = generation ? takeLastNumber(before) : std::nullopt;
    if (!number || !isObjectNumber(*number))
        return std::nullopt;
    return ObjectHeader{*number, *generation, begin + before.size()};
}

/// The header whose keyword "obj" stands at `keyword`.
std::optional<ObjectHeader> headerAt(std::string_view file, size_t keyword) {
    return numbersBefore(file, keyword, keyword + 3);
}

/// The end of the stream's data that begin at `begin`. Where "endstream" is damaged, "endobj" ends them too.
size_t findDataEnd(std::string_view file, size_t begin) {
    size_t end = file.find("end", begin);
    while (end != std::string_view::npos) {
        const std::string_view rest = file.substr(end + 3, 6);
        if (rest == "stream" || rest.substr(0, 3) == "obj")
            return end;
        end = file.find("end", end + 3);
    }
    return file.size();
}

/// The end of the stream whose keyword stands between the two positions; `end` where none does. The word may
/// stand in a string, but as a keyword it follows a dictionary.
size_t skipStream(std::string_view file, size_t begin, size_t end) {
    const std::string_view searched = file.substr(0, end);
    for (size_t found = searched.find("stream", begin); found != std::string_view::npos;
         found = searched.find("stream", found + 1)) {
        const std::string_view before = searched.substr(begin, found - begin);
        const size_t last = before.find_last_not_of(space);
        if (last != std::string_view::npos && before[last] == '>')
            return findDataEnd(file, found);
    }
    return end;
}

}  // namespace

ObjectPlaces scanForObjects(std::string_view file) {
    constexpr std::string_view keyword = "obj";
    ObjectPlaces places;
    size_t position = 0;
    size_t found = 0;
    for (;;) {
        // Streams without an object between them do not change where the next object is.
        if (found <= position)
            found = std::min(file.find(keyword, position), file.size());
        const size_t dataEnd = skipStream(file, position, found);
        if (dataEnd == file.size())
            return places;
        position = dataEnd;
        if (dataEnd != found)
            continue;
        if (const auto header = headerAt(file, found))
            places[header->number] = {header->position, 0, header->generation};
        position += keyword.size();
    }
}

std::optional<size_t> valuePosition(std::string_view file, size_t position, int number) {
    if (position >= file.size())
        return std::nullopt;
    const size_t keyword = file.substr(position, longestHeader).find("obj");
    if (keyword == std::string_view::npos)
        return std::nullopt;
    const auto header = headerAt(file, position + keyword);
    const bool isMeant = header && header->number == number && header->position >= position;
    return isMeant ? std::optional(position + keyword + 3) : std::nullopt;
}

std::set<int> scanForReferences(std::string_view file) {
    std::set<int> numbers;
    for (size_t at = file.find('R'); at != std::string_view::npos; at = file.find('R', at + 1)) {
        if (const auto reference = numbersBefore(file, at, at + 1))
            numbers.insert(reference->number);
    }
    return numbers;
}

std::vector<size_t> scanForTrailers(std::string_view file) {
    constexpr std::string_view keyword = "trailer";
    std::vector<size_t> positions;
    for (size_t at = file.find(keyword); at != std::string_view::npos; at = file.find(keyword, at + 1))
        positions.push_back(at + keyword.size());
    return positions;
}

}  // namespace vellmora
