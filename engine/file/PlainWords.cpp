#include "engine/file/PlainWords.h"

#include <algorithm>

namespace vellmora {

namespace {

class Collection {
public:
    explicit Collection(const PlainFile& file) : m_file(file) {}

    /// False where the value cannot be taken over in its words.
    bool add(std::string_view value) {
        if (value.starts_with("<<") || value.starts_with('[')) {
            PlainObject inner;
            inner.readValue(value);
            return add(inner);
        }
        addWord({}, value);
        return true;
    }

    bool add(const PlainObject& object) {
        if (object.isDictionary())
            return addDictionary(object);
        if (object.value().starts_with('['))
            return addArray(object);
        addWord({}, object.value());
        return true;
    }

    PlainWords take() { return std::move(m_words); }

private:
    void addWord(std::string_view key, std::string_view value) {
        if (const int number = plainReference(value); number > 0) {
            m_words.push_back({key, number});
            return;
        }
        if (!key.empty())
            m_words.push_back({key});
        m_words.push_back({value});
    }

    bool addDictionary(const PlainObject& dictionary) {
        const std::string_view type = dictionary.entry("/Type");
        if (type == "/Page" || type == "/Pages" || plainReference(type) > 0)
            return false;
        std::vector<PlainObject::Entry> entries = dictionary.entries();
        const auto byKey = [](const auto& a, const auto& b) { return a.first < b.first; };
        std::sort(entries.begin(), entries.end(), byKey);
        m_words.push_back({"<<"});
        std::string_view last;
        for (const auto& [key, value] : entries) {
            // The length is that of the bytes, which stay where they are.
            const bool isLength = dictionary.isStream() && key == "/Length";
            // Readers differ in which of two entries with one key they take.
            if (key == last || !addEntry(key, isLength ? m_file.statedLength(dictionary) : value))
                return false;
            last = key;
        }
        m_words.push_back({">>"});
        return true;
    }

    bool addEntry(std::string_view key, std::string_view value) {
        if (value == "null")
            return true;
        if (!value.starts_with("<<") && !value.starts_with('[')) {
            addWord(key, value);
            return true;
        }
        m_words.push_back({key});
        return add(value);
    }

    bool addArray(const PlainObject& array) {
        const std::vector<std::string_view>& items = array.items();
        if (!items.empty() && items.front() == "/ICCBased" && !isOfSeveralComponents(items))
            return false;
        m_words.push_back({"["});
        const bool areAll =
            std::all_of(items.begin(), items.end(), [this](std::string_view item) { return add(item); });
        m_words.push_back({"]"});
        return areAll;
    }

    bool isOfSeveralComponents(const std::vector<std::string_view>& space) const {
        const int profile = space.size() == 2 ? plainReference(space[1]) : 0;
        if (profile <= 0)
            return false;
        PlainObject stream;
        m_file.read(profile, stream);
        return plainNumber(stream.entry("/N")) > 1;
    }

    const PlainFile& m_file;
    PlainWords m_words;
};

template <typename Value>
std::optional<PlainWords> wordsOf(const Value& value, const PlainFile& file) {
    try {
        Collection words(file);
        return words.add(value) ? std::optional(words.take()) : std::nullopt;
    } catch (const NotPlain&) {
        return std::nullopt;
    }
}

}  // namespace

std::optional<PlainWords> plainWords(const PlainObject& object, const PlainFile& file) {
    return object.isVerbatim() ? wordsOf(object, file) : std::nullopt;
}

std::optional<PlainWords> plainWords(std::string_view value, const PlainFile& file) {
    return wordsOf(value, file);
}

}  // namespace vellmora
