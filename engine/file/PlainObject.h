#pragma once

#include <cstdint>
#include <exception>
#include <string_view>
#include <utility>
#include <vector>

namespace vellmora {

/// Something is not as plain as most files have it. It may be sound all the same, or damaged: whoever meets
/// this leaves the file to the PDF library.
struct NotPlain : std::exception {};

/// The text ends before the object does.
struct TextEnds : NotPlain {};

/// An object of a file as it stands there, read without the PDF library: a hundred times quicker, and nothing
/// is kept of it. Only what every reader takes in the same way is read, all else is `NotPlain`: no comments,
/// no generations but 0, no numbers beyond 18 digits, no odd words, nothing nested deeply.
class PlainObject {
public:
    using Entry = std::pair<std::string_view, std::string_view>;

    /// Reads the object of that number, which the text begins with, up to its "endobj" or "stream". The text
    /// is to live as long as what was read is used. Throws `NotPlain`, where it goes on behind the text
    /// `TextEnds`.
    void read(std::string_view text, int number);
    /// Reads a value without an object around it; the text may go on behind it.
    void readValue(std::string_view text);

    /// Whether it is a dictionary, or a stream with one.
    bool isDictionary() const { return m_value.starts_with("<<"); }
    bool isStream() const { return m_isStream; }
    /// Of a dictionary: each key, with its slash, and the text of its value.
    const std::vector<Entry>& entries() const { return m_entries; }
    /// Empty for a key that there is not; the last where there are several.
    std::string_view entry(std::string_view key) const;
    /// The numbers of all objects that it refers to, in their order.
    const std::vector<int>& references() const { return m_references; }
    /// Of an array: the texts of its values.
    const std::vector<std::string_view>& items() const { return m_items; }
    /// Whether each of its words can stand in a new file as it stands here: numbers, names and strings that
    /// are written in the one way that needs no thought.
    bool isVerbatim() const { return m_isVerbatim; }
    /// How far the text was read.
    size_t length() const { return m_at; }
    std::string_view value() const { return m_value; }

private:
    char next() const;
    void skipAll(std::uint8_t kind);
    void skipBlanks();
    bool skipWord(std::string_view word);
    void skipValue(int level);
    void skipDictionary(int level);
    void skipArray(int level);
    void skipString();
    void skipHexString();
    std::string_view takeName();
    void skipNumber();
    std::string_view takeRegular();
    bool skipReference(std::string_view number);

    std::string_view m_text;
    size_t m_at = 0;
    std::string_view m_value;
    bool m_isStream = false;
    std::vector<Entry> m_entries;
    std::vector<int> m_references;
    std::vector<std::string_view> m_items;
    bool m_isVerbatim = true;
};

/// The number that a text consists of, of up to nine digits; below zero for any other text.
int plainNumber(std::string_view text);

/// The object's number where the text is a reference, else 0.
int plainReference(std::string_view text);

}  // namespace vellmora
