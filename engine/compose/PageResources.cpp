#include "engine/compose/PageResources.h"

#include "engine/objects/DecodedBytes.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace vellmora {

namespace {

/// A page with no more pictures, forms and fonts than this is not worth the reading of its content.
constexpr size_t usualCount = 12;
/// Of a page, in bytes.
constexpr size_t mostContent = size_t{64} << 20;

constexpr std::array trimmedCategories{"/XObject", "/Font"};

using Names = std::set<std::string>;

bool endsName(char c) {
    constexpr std::string_view delimiters("\0\t\n\f\r ()<>[]{}/%", 16);
    return delimiters.find(c) != std::string_view::npos;
}

bool isHexDigit(char c) {
    return std::isxdigit(static_cast<unsigned char>(c)) != 0;
}

/// "#" and two hexadecimal digits stand for a byte. libqpdf keeps a sign that escapes nothing as a null
/// character.
std::string unescaped(const std::string& name) {
    std::string result;
    for (size_t i = 0; i < name.size(); ++i) {
        const bool isEscape =
            name[i] == '#' && i + 2 < name.size() && isHexDigit(name[i + 1]) && isHexDigit(name[i + 2]);
        if (isEscape)
            result += static_cast<char>(std::stoi(name.substr(i + 1, 2), nullptr, 16));
        else
            result += name[i] == '#' ? '\0' : name[i];
        i += isEscape ? 2 : 0;
    }
    return result;
}

/// Whatever looks like a name in the content, also inside of strings and inline pictures: rather too many
/// names than one too few.
void collectNames(const std::string& content, Names& names) {
    for (size_t at = content.find('/'); at != std::string::npos; at = content.find('/', at + 1)) {
        size_t end = at + 1;
        while (end < content.size() && !endsName(content[end]))
            ++end;
        names.insert(unescaped(content.substr(at, end - at)));
    }
}

/// Nothing where the content cannot be decoded as a whole, or is more than is worth it.
std::optional<Names> namesInContent(const ParsedPage& page) {
    size_t room = mostContent;
    Names names;
    for (const QPDFObjectHandle& stream : contentStreamsOf(page)) {
        const std::optional<std::string> content = decodedBytes(stream, room);
        if (!content)
            return std::nullopt;
        room -= content->size();
        collectNames(*content, names);
    }
    return names;
}

/// Whether what the entry stands for draws with the resources of the page.
bool drawsWithPageResources(QPDFObjectHandle entry) {
    QPDFObjectHandle dictionary = entry.isStream() ? entry.getDict() : entry;
    if (!dictionary.isDictionary())
        return false;
    QPDFObjectHandle subtype = dictionary.getKey("/Subtype");
    const bool draws = subtype.isNameAndEquals("/Form") || subtype.isNameAndEquals("/Type3");
    return draws && !dictionary.getKey("/Resources").isDictionary();
}

/// The entries of a category that are named; nothing where one of them needs others that it does not name
/// here. Takes time for the names, however many entries there are.
std::optional<QPDFObjectHandle> entriesNamed(QPDFObjectHandle category, const Names& names) {
    QPDFObjectHandle kept = QPDFObjectHandle::newDictionary();
    for (const std::string& name : names) {
        if (!category.hasKey(name))
            continue;
        const QPDFObjectHandle entry = category.getKey(name);
        if (drawsWithPageResources(entry))
            return std::nullopt;
        kept.replaceKey(name, entry);
    }
    return kept;
}

/// Nothing where all of them may be needed.
std::optional<QPDFObjectHandle> trimmedTo(const Names& names, QPDFObjectHandle resources) {
    // Not a shallow copy, which has copies of all that stands in it.
    QPDFObjectHandle trimmed = QPDFObjectHandle::newDictionary();
    for (const auto& [key, value] : resources.ditems()) {
        const bool isTrimmed =
            std::find(trimmedCategories.begin(), trimmedCategories.end(), key) != trimmedCategories.end() &&
            QPDFObjectHandle(value).isDictionary();
        const auto kept = isTrimmed ? entriesNamed(value, names) : std::optional<QPDFObjectHandle>(value);
        if (!kept)
            return std::nullopt;
        trimmed.replaceKey(key, *kept);
    }
    return trimmed;
}

size_t countOf(QPDFObjectHandle resources) {
    size_t count = 0;
    for (const char* key : trimmedCategories) {
        QPDFObjectHandle category = resources.getKey(key);
        if (category.isDictionary())
            count += category.getKeys().size();
    }
    return count;
}

/// Of the pictures and forms, or of the fonts.
size_t plainCount(std::string_view category, const PlainFile& file) {
    PlainObject entries;
    if (const int number = plainReference(category); number > 0)
        file.read(number, entries);
    else if (category.starts_with("<<"))
        entries.readValue(category);
    return entries.entries().size();
}

/// The words of resources that are plain and few.
std::optional<PlainWords> wordsOfFew(int number, const PlainFile& file) {
    try {
        PlainObject resources;
        file.read(number, resources);
        if (!hasFewEntries(resources, file) || !resources.isDictionary() || resources.isStream())
            return std::nullopt;
        PlainWords words;
        addPlainWords(words, resources, file);
        return words;
    } catch (const NotPlain&) {
        return std::nullopt;
    }
}

}  // namespace

bool hasFewEntries(const PlainObject& resources, const PlainFile& file) {
    size_t count = 0;
    for (const char* key : trimmedCategories)
        count += plainCount(resources.entry(key), file);
    return count <= usualCount;
}

std::vector<QPDFObjectHandle> contentStreamsOf(const ParsedPage& page) {
    QPDFObjectHandle contents = page.entry("/Contents");
    if (contents.isStream())
        return {contents};
    std::vector<QPDFObjectHandle> streams;
    if (contents.isArray()) {
        for (QPDFObjectHandle item : contents.aitems()) {
            if (item.isStream())
                streams.push_back(item);
        }
    }
    return streams;
}

std::optional<QPDFObjectHandle> PageResources::copyInWords(const QPDFObjectHandle& resources,
                                                           const PlainFile& file) {
    if (!resources.isIndirect() || resources.getObjGen().getGen() != 0)
        return std::nullopt;
    if (m_lastInWords.isInitialized() && resources.isSameObjectAs(m_lastInWords))
        return m_copyInWords;
    const std::optional<PlainWords> words = wordsOfFew(resources.getObjGen().getObj(), file);
    if (!words)
        return std::nullopt;
    m_lastInWords = resources;
    m_copyInWords = m_copier.copyInWords(resources, *words);
    return m_copyInWords;
}

QPDFObjectHandle PageResources::of(const ParsedPage& page, const PlainFile* file) {
    QPDFObjectHandle resources = page.resources;
    if (file) {
        if (const auto copy = copyInWords(resources, *file))
            return *copy;
    }
    if (resources.isNull())
        resources = page.outerResources;
    if (!resources.isDictionary())
        return QPDFObjectHandle::newDictionary();
    if (!m_last.isInitialized() || !resources.isSameObjectAs(m_last)) {
        m_last = resources;
        m_hasMany = countOf(resources) > usualCount;
        m_copyOfLast = QPDFObjectHandle();
    }
    if (!m_hasMany)
        return m_copier.copy(resources);
    const std::optional<Names> names = namesInContent(page);
    if (!names)
        return copyOfWhole();
    const auto trimmed = trimmedTo(*names, resources);
    return trimmed ? m_copier.copy(*trimmed) : copyOfWhole();
}

QPDFObjectHandle PageResources::copyOfWhole() {
    if (!m_copyOfLast.isInitialized()) {
        m_copyOfLast = m_copier.copy(m_last);
        if (!m_copyOfLast.isIndirect())
            m_copyOfLast = m_copier.output().makeIndirectObject(m_copyOfLast);
    }
    return m_copyOfLast;
}

}  // namespace vellmora
