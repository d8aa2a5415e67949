#pragma once

#include "platform/pdf/writing/ObjectNumbers.h"

#include <map>
#include <string>
#include <string_view>

namespace vellmora {

/// Puts objects into the words of a PDF file (ISO 32000-2, 7.3), as close together as can be.
class ObjectText {
public:
    /// What is referred to gets its number from `numbers`.
    explicit ObjectText(ObjectNumbers& numbers) : m_numbers(numbers) {}

    /// A word of its own.
    void add(std::string_view word);
    /// What the object holds, also where it is an indirect one. Of a stream the dictionary.
    void addContent(QPDFObjectHandle object);
    void addDictionary(const std::map<std::string, QPDFObjectHandle>& entries);

    const std::string& text() const { return m_text; }
    void clear() { m_text.clear(); }

private:
    void addValue(const QPDFObjectHandle& value);
    void addName(const std::string& name);

    ObjectNumbers& m_numbers;
    std::string m_text;
};

}  // namespace vellmora
