#pragma once

#include "engine/objects/Qpdf.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace vellmora {

/// Numbers the objects of a new file in the order in which it refers to them, from 1 on. What nothing refers
/// to gets no number, and is not written.
class ObjectNumbers {
public:
    /// The number of an indirect object of the output.
    int of(const QPDFObjectHandle& object);
    /// A number for something that is not an object of the output.
    int reserve();

    int count() const { return static_cast<int>(m_objects.size()); }
    /// Not initialized where the number was reserved.
    const QPDFObjectHandle& object(int number) const { return m_objects[static_cast<size_t>(number) - 1]; }

private:
    std::vector<int> m_numbers;  ///< by the number in the output as it is put together; 0 for none so far
    std::vector<QPDFObjectHandle> m_objects;
};

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
