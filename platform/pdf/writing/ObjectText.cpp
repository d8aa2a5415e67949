#include "platform/pdf/writing/ObjectText.h"

#include <algorithm>

namespace vellmora {

namespace {

/// A name may be empty: what follows its slash directly would be taken for it.
bool endsWord(char last) {
    return std::string_view("\n )>[]<").find(last) != std::string_view::npos;
}

bool startsWord(char first) {
    return std::string_view("(<>[]/").find(first) != std::string_view::npos;
}

/// A character that stands for itself in a name.
bool isPlain(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' ||
           c == '_' || c == '.' || c == '+' || c == ',' || c == '*';
}

}  // namespace

void ObjectText::add(std::string_view word) {
    if (!m_text.empty() && !endsWord(m_text.back()) && !startsWord(word.front()))
        m_text += ' ';
    m_text += word;
}

void ObjectText::addName(const std::string& name) {
    if (std::all_of(name.begin() + 1, name.end(), isPlain))
        add(name);
    else
        add(QPDFObjectHandle::newName(name).unparse());
}

void ObjectText::addValue(const QPDFObjectHandle& value) {
    if (!value.isIndirect()) {
        addContent(value);
        return;
    }
    add(std::to_string(m_numbers.of(value)));
    add("0");
    add("R");
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
