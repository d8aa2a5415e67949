#include "engine/output/ObjectText.h"

#include "engine/objects/Characters.h"

#include <algorithm>

namespace vellmora {

int& ObjectNumbers::placeOf(const QPDFObjectHandle& object) {
    const auto place = static_cast<size_t>(object.getObjGen().getObj());
    if (place >= m_numbers.size())
        m_numbers.resize(std::max(place + 1, 2 * m_numbers.size()));
    return m_numbers[place];
}

int ObjectNumbers::find(const QPDFObjectHandle& object) const {
    const auto place = static_cast<size_t>(object.getObjGen().getObj());
    return place < m_numbers.size() ? m_numbers[place] : 0;
}

void ObjectNumbers::beginPart() {
    m_numbers.clear();
    m_objects.clear();
    m_next = 0;
}

int ObjectNumbers::of(const QPDFObjectHandle& object) {
    int& number = placeOf(object);
    if (number == 0) {
        number = reserve();
        m_objects.emplace_back(number, object);
    }
    return number;
}

std::optional<ObjectNumbers::Numbered> ObjectNumbers::next() {
    return m_next < m_objects.size() ? std::optional(m_objects[m_next++]) : std::nullopt;
}

namespace {

/// A name may be empty: what follows its slash directly would be taken for it.
bool endsWord(char last) {
    return isOneOf("\n )>[]<", last);
}

bool startsWord(char first) {
    return isOneOf("(<>[]/", first);
}

/// A character that stands for itself in a name.
bool isPlain(char c) {
    return c > ' ' && c <= '~' && !isOneOf("#()<>[]{}/%", c);
}

/// libqpdf keeps a sign that escapes nothing as a null character, and would write one that was escaped
/// as if it were an escape.
std::string escaped(char c) {
    constexpr std::string_view digits = "0123456789abcdef";
    const auto code = static_cast<unsigned char>(c);
    return code == 0 ? "#" : std::string{'#', digits[code >> 4], digits[code & 15]};
}

}  // namespace

void ObjectText::separate(char next) {
    if (!m_text.empty() && !endsWord(m_text.back()) && !startsWord(next))
        m_text += ' ';
}

void ObjectText::add(std::string_view word) {
    separate(word.front());
    m_text += word;
}

void ObjectText::add(const CopiedText& copied) {
    const std::string_view text = copied.text;
    if (text.empty())
        return;
    separate(text.front());
    size_t done = 0;
    for (const auto& [position, object] : copied.gaps) {
        m_text += text.substr(done, position - done);
        m_text += std::to_string(m_numbers->of(object));
        done = position;
    }
    m_text += text.substr(done);
}

void ObjectText::add(const PlainWords& words, const Counterpart& counterpart) {
    for (const PlainWord& word : words) {
        if (word.number == 0) {
            add(word.text);
            continue;
        }
        const QPDFObjectHandle object = counterpart(word.number);
        // An entry that is null is none.
        if (!word.text.empty() && QPDFObjectHandle(object).isNull())
            continue;
        if (!word.text.empty())
            add(word.text);
        addValue(object);
    }
}

void ObjectText::addReference(int number) {
    separate('0');
    m_text += std::to_string(number);
    m_text += " 0 R";
}

void ObjectText::addReference(const QPDFObjectHandle& object) {
    separate('0');
    if (m_numbers)
        m_text += std::to_string(m_numbers->of(object));
    else
        m_gaps.push_back({m_text.size(), object});
    m_text += " 0 R";
}

void ObjectText::addName(const std::string& name) {
    if (std::all_of(name.begin() + 1, name.end(), isPlain)) {
        add(name);
        return;
    }
    std::string word = "/";
    for (const char c : std::string_view(name).substr(1))
        word += isPlain(c) ? std::string(1, c) : escaped(c);
    add(word);
}

void ObjectText::addValue(const QPDFObjectHandle& value) {
    if (value.isIndirect())
        addReference(value);
    else
        addContent(value);
}

void ObjectText::addDictionary(const std::map<std::string, QPDFObjectHandle>& entries) {
    add("<<");
    for (const auto& [key, value] : entries) {
        if (QPDFObjectHandle(value).isNull())
            continue;
        addName(key);
        addValue(value);
    }
    add(">>");
}

void ObjectText::addContent(QPDFObjectHandle object) {
    switch (object.getTypeCode()) {
        case ::ot_dictionary:
            addDictionary(object.getDictAsMap());
            break;
        case ::ot_stream:
            addDictionary(object.getDict().getDictAsMap());
            break;
        case ::ot_array:
            add("[");
            for (const QPDFObjectHandle& item : object.getArrayAsVector())
                addValue(item);
            add("]");
            break;
        case ::ot_name:
            addName(object.getName());
            break;
        case ::ot_boolean:
        case ::ot_integer:
        case ::ot_real:
        case ::ot_string:
            add(object.unparseResolved());
            break;
        default:
            add("null");
    }
}

}  // namespace vellmora
