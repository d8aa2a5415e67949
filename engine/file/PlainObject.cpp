#include "engine/file/PlainObject.h"

#include "engine/objects/ObjectPlaces.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace vellmora {

namespace {

constexpr int deepest = 50;
constexpr size_t mostDigits = 18;

enum Kind : std::uint8_t { regular, blank, delimiter, odd };

constexpr auto kinds = [] {
    std::array<std::uint8_t, 256> result{};
    for (const char c : {' ', '\t', '\r', '\n', '\f'})
        result[static_cast<unsigned char>(c)] = blank;
    for (const char c : {'(', ')', '<', '>', '[', ']', '/'})
        result[static_cast<unsigned char>(c)] = delimiter;
    for (const char c : {'\0', '\v', '%', '{', '}'})
        result[static_cast<unsigned char>(c)] = odd;
    return result;
}();

Kind kindOf(char c) {
    return static_cast<Kind>(kinds[static_cast<unsigned char>(c)]);
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

bool isPrintable(char c) {
    return c >= ' ' && c <= '~';
}

/// Of the numbers: no sign but a minus, no zeros that say nothing, digits on both sides of the point.
bool isUsualNumber(std::string_view word) {
    const std::string_view size = word.substr(word.front() == '-' ? 1 : 0);
    const size_t point = size.find('.');
    if (point != std::string_view::npos)
        return isDigit(size.front()) && isDigit(size.back());
    return isDigit(size.front()) && (size.front() != '0' || word == "0");
}

bool isHexDigit(char c) {
    return isDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

[[noreturn]] void refuse() {
    throw NotPlain();
}

void require(bool isPlain) {
    if (!isPlain)
        refuse();
}

[[noreturn]] void endText() {
    throw TextEnds();
}

}  // namespace

int plainNumber(std::string_view text) {
    if (text.empty() || text.size() > 9)
        return -1;
    int value = 0;
    for (const char c : text) {
        if (!isDigit(c))
            return -1;
        value = 10 * value + (c - '0');
    }
    return value;
}

int plainReference(std::string_view text) {
    const size_t end = text.find_first_of(" \t\r\n\f");
    const bool isReference = end != std::string_view::npos && text.ends_with('R');
    return isReference ? plainNumber(text.substr(0, end)) : 0;
}

void PlainObject::read(std::string_view text, int number) {
    m_text = text;
    m_at = 0;
    require(plainNumber(takeRegular()) == number);
    skipBlanks();
    require(takeRegular() == "0");
    skipBlanks();
    require(skipWord("obj"));
    readValue(m_text.substr(m_at));
    const auto start = static_cast<size_t>(m_value.data() - text.data());
    m_text = text;
    m_at = start + m_value.size();
    skipBlanks();
    m_isStream = isDictionary() && skipWord("stream");
    require(m_isStream || skipWord("endobj"));
}

void PlainObject::readValue(std::string_view text) {
    m_text = text;
    m_at = 0;
    m_isStream = false;
    m_entries.clear();
    m_references.clear();
    m_items.clear();
    m_isVerbatim = true;
    skipBlanks();
    const size_t start = m_at;
    skipValue(0);
    m_value = m_text.substr(start, m_at - start);
}

std::string_view PlainObject::entry(std::string_view key) const {
    const auto found = std::find_if(m_entries.rbegin(), m_entries.rend(),
                                    [key](const Entry& entry) { return entry.first == key; });
    return found == m_entries.rend() ? std::string_view() : found->second;
}

inline char PlainObject::next() const {
    if (m_at >= m_text.size())
        endText();
    return m_text[m_at];
}

/// Goes over all characters of a kind.
inline void PlainObject::skipAll(std::uint8_t kind) {
    size_t at = m_at;
    while (at < m_text.size() && kinds[static_cast<unsigned char>(m_text[at])] == kind)
        ++at;
    m_at = at;
    if (at == m_text.size())
        endText();
}

void PlainObject::skipBlanks() {
    skipAll(blank);
}

/// The word, and nothing that goes on with it.
bool PlainObject::skipWord(std::string_view word) {
    if (m_text.size() - m_at <= word.size())
        endText();
    if (m_text.substr(m_at, word.size()) != word || kindOf(m_text[m_at + word.size()]) == regular)
        return false;
    m_at += word.size();
    return true;
}

std::string_view PlainObject::takeRegular() {
    const size_t start = m_at;
    skipAll(regular);
    return m_text.substr(start, m_at - start);
}

void PlainObject::skipValue(int level) {
    require(level < deepest);
    switch (next()) {
        case '/':
            takeName();
            return;
        case '(':
            return skipString();
        case '[':
            return skipArray(level);
        case '<':
            ++m_at;
            return next() == '<' ? skipDictionary(level) : skipHexString();
        case 't':
            return require(skipWord("true"));
        case 'f':
            return require(skipWord("false"));
        case 'n':
            return require(skipWord("null"));
        default:
            skipNumber();
    }
}

/// From its second "<" on.
void PlainObject::skipDictionary(int level) {
    for (++m_at;;) {
        skipBlanks();
        if (next() == '>') {
            ++m_at;
            require(next() == '>');
            ++m_at;
            return;
        }
        const std::string_view key = takeName();
        require(key.size() > 1 && key.find('#') == std::string_view::npos);
        skipBlanks();
        const size_t start = m_at;
        skipValue(level + 1);
        if (level == 0)
            m_entries.emplace_back(key, m_text.substr(start, m_at - start));
    }
}

void PlainObject::skipArray(int level) {
    for (++m_at;;) {
        skipBlanks();
        if (next() == ']') {
            ++m_at;
            return;
        }
        const size_t start = m_at;
        skipValue(level + 1);
        if (level == 0)
            m_items.push_back(m_text.substr(start, m_at - start));
    }
}

void PlainObject::skipString() {
    int open = 0;
    do {
        const char c = next();
        if (c == '(')
            ++open;
        else if (c == ')')
            --open;
        else if (c == '\\')
            ++m_at;
        m_isVerbatim &= isPrintable(c) && c != '\\' && open <= 1;
        ++m_at;
    } while (open > 0);
}

void PlainObject::skipHexString() {
    m_isVerbatim = false;
    for (; next() != '>'; ++m_at)
        require(isHexDigit(m_text[m_at]) || kindOf(m_text[m_at]) == blank);
    ++m_at;
}

std::string_view PlainObject::takeName() {
    require(next() == '/');
    const size_t start = m_at++;
    const std::string_view rest = takeRegular();
    require(kindOf(next()) != odd);
    for (size_t sign = rest.find('#'); sign != std::string_view::npos; sign = rest.find('#', sign + 1)) {
        require(sign + 2 < rest.size() && isHexDigit(rest[sign + 1]) && isHexDigit(rest[sign + 2]));
        require(rest.substr(sign + 1, 2) != "00");
        m_isVerbatim = false;
    }
    m_isVerbatim &= !rest.empty() && std::all_of(rest.begin(), rest.end(), isPrintable);
    return m_text.substr(start, m_at - start);
}

/// A number, or a reference, which begins with one.
void PlainObject::skipNumber() {
    const std::string_view word = takeRegular();
    require(!word.empty() && word.size() <= mostDigits);
    size_t digits = 0;
    size_t points = 0;
    for (size_t i = word[0] == '-' || word[0] == '+' ? 1 : 0; i < word.size(); ++i) {
        digits += isDigit(word[i]) ? 1U : 0U;
        points += word[i] == '.' ? 1U : 0U;
        require(isDigit(word[i]) || word[i] == '.');
    }
    require(digits > 0 && points <= 1);
    if (!skipReference(word))
        m_isVerbatim &= isUsualNumber(word);
}

/// What follows a number where the two begin a reference; false where they do not.
bool PlainObject::skipReference(std::string_view number) {
    const size_t start = m_at;
    skipBlanks();
    if (m_at > start && next() == '0') {
        ++m_at;
        const size_t end = m_at;
        skipBlanks();
        if (m_at > end && next() == 'R' && skipWord("R")) {
            const int target = plainNumber(number);
            require(isObjectNumber(target));
            m_references.push_back(target);
            return true;
        }
    }
    m_at = start;
    return false;
}

}  // namespace vellmora
