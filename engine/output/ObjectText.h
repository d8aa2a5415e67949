#pragma once

#include "engine/objects/Qpdf.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace vellmora {

/// Numbers the objects of a new file in the order in which it refers to them, from 1 on. What nothing refers
/// to gets no number, and is not written. A long file is put together from several outputs.
class ObjectNumbers {
public:
    /// The number of an indirect object of the output.
    int of(const QPDFObjectHandle& object);
    /// 0 for an object without one.
    int find(const QPDFObjectHandle& object) const;
    /// A number for something that is not an object of the output.
    int reserve();
    /// The object stands for something that has a number already.
    void set(const QPDFObjectHandle& object, int number) { placeOf(object) = number; }
    /// From now on the objects are those of another output, and the numbers go on.
    void beginPart();

    int count() const { return m_before + static_cast<int>(m_objects.size()); }
    /// Of those of this output. Not initialized where the number was reserved.
    const QPDFObjectHandle& object(int number) const {
        return m_objects[static_cast<size_t>(number - m_before) - 1];
    }

private:
    int& placeOf(const QPDFObjectHandle& object);

    int m_before = 0;            ///< numbers of the outputs before
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
