#pragma once

#include "engine/file/PlainWords.h"
#include "engine/objects/Qpdf.h"
#include "engine/output/CopiedText.h"

#include <functional>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
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
    int reserve() { return ++m_count; }
    /// The object stands for something that has a number already.
    void set(const QPDFObjectHandle& object, int number) { placeOf(object) = number; }
    /// From now on the objects are those of another output, and the numbers go on.
    void beginPart();

    /// An object and its number.
    using Numbered = std::pair<int, QPDFObjectHandle>;
    /// The next object of this output in the order in which they got their numbers, each once.
    std::optional<Numbered> next();

private:
    int& placeOf(const QPDFObjectHandle& object);

    int m_count = 0;
    std::vector<int> m_numbers;  ///< by the number in the output as it is put together; 0 for none so far
    std::vector<Numbered> m_objects;
    size_t m_next = 0;
};

/// Puts objects into the words of a PDF file (ISO 32000-2, 7.3), as close together as can be.
class ObjectText {
public:
    /// What is referred to gets its number from `numbers`.
    explicit ObjectText(ObjectNumbers& numbers) : m_numbers(&numbers) {}
    /// For a text with gaps in place of the numbers.
    ObjectText() = default;

    /// A word of its own.
    void add(std::string_view word);
    /// The words of a text, with numbers in its gaps.
    void add(const CopiedText& copied);
    /// `counterpart` answers the object of the output that a reference to this number leads to.
    using Counterpart = std::function<QPDFObjectHandle(int number)>;
    void add(const PlainWords& words, const Counterpart& counterpart);
    /// `numberOf` answers the number in the new file of the object of this number.
    template <typename NumberOf>
    void addNumbered(std::span<const PlainWord> words, NumberOf numberOf) {
        for (const PlainWord& word : words) {
            if (!word.text.empty())
                add(word.text);
            if (word.number != 0)
                addReference(numberOf(word.number));
        }
    }
    void addReference(int number);
    /// What the object holds, also where it is an indirect one. Of a stream the dictionary.
    void addContent(QPDFObjectHandle object);
    void addDictionary(const std::map<std::string, QPDFObjectHandle>& entries);
    /// A reference, or what the object holds where it is no indirect one.
    void addValue(const QPDFObjectHandle& value);

    const std::string& text() const { return m_text; }
    /// The text with its gaps, which is not here any more then.
    CopiedText take() { return {std::move(m_text), std::move(m_gaps)}; }
    void clear() { m_text.clear(); }

private:
    void addName(const std::string& name);
    void addReference(const QPDFObjectHandle& object);
    void separate(char next);

    ObjectNumbers* m_numbers = nullptr;
    std::string m_text;
    std::vector<CopiedText::Gap> m_gaps;
};

}  // namespace vellmora
