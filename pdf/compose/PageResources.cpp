#include "pdf/compose/PageResources.h"

#include <array>
#include <cctype>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>

#include <qpdf/Pl_String.hh>

namespace vellmora {

namespace {

/// A page with no more pictures, forms and fonts than this is not worth the reading of its content.
constexpr size_t usualCount = 12;

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

/// Nothing where the content cannot be decoded as a whole.
std::optional<Names> namesInContent(const ParsedPage& page) {
    Names names;
    for (QPDFObjectHandle& stream : contentStreamsOf(page)) {
        std::string content;
        bool isDecoded = false;
        Pl_String receiver("page content", nullptr, content);
        try {
            if (!stream.pipeStreamData(&receiver, &isDecoded, 0, qpdf_dl_specialized, true) || !isDecoded)
                return std::nullopt;
        } catch (const std::runtime_error&) {  // a filter that is given what it does not know
            return std::nullopt;
        }
        collectNames(content, names);
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
/// here.
std::optional<QPDFObjectHandle> entriesNamed(QPDFObjectHandle category, const Names& names) {
    QPDFObjectHandle kept = QPDFObjectHandle::newDictionary();
    for (const auto& [name, entry] : category.ditems()) {
        if (names.count(name) == 0)
            continue;
        if (drawsWithPageResources(entry))
            return std::nullopt;
        kept.replaceKey(name, entry);
    }
    return kept;
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

}  // namespace

std::vector<QPDFObjectHandle> contentStreamsOf(const ParsedPage& page) {
    QPDFObjectHandle contents = QPDFObjectHandle(page.dictionary).getKey("/Contents");
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

QPDFObjectHandle resourcesInUse(const ParsedPage& page) {
    QPDFObjectHandle resources = page.resources;
    if (resources.isNull())
        resources = page.outerResources;
    if (!resources.isDictionary() || countOf(resources) <= usualCount)
        return resources;
    const std::optional<Names> names = namesInContent(page);
    if (!names)
        return resources;
    QPDFObjectHandle trimmed = resources.shallowCopy();
    for (const char* key : trimmedCategories) {
        QPDFObjectHandle category = resources.getKey(key);
        if (!category.isDictionary())
            continue;
        const auto kept = entriesNamed(category, *names);
        if (!kept)
            return resources;
        trimmed.replaceKey(key, *kept);
    }
    return trimmed;
}

}  // namespace vellmora
