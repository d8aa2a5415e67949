#include "engine/file/PlainWords.h"

#include <algorithm>

namespace vellmora {

namespace {

void require(bool isPlain) {
    if (!isPlain)
        throw NotPlain();
}

class Collection {
public:
    Collection(PlainWords& words, const PlainFile& file) : m_words(words), m_file(file) {}

    void add(std::string_view value) {
        if (!value.starts_with("<<") && !value.starts_with('['))
            return addWord({}, value);
        PlainObject inner;
        inner.readValue(value);
        add(inner);
    }

    void add(const PlainObject& object) {
        if (object.isStream())
            addEntries(object);
        else if (object.isDictionary())
            addDictionary(object);
        else if (object.value().starts_with('['))
            addArray(object);
        else
            addWord({}, object.value());
    }

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

    void addDictionary(const PlainObject& dictionary) {
        m_words.push_back({"<<"});
        addEntries(dictionary);
        m_words.push_back({">>"});
    }

    void addEntries(const PlainObject& dictionary) {
        const std::string_view type = dictionary.entry("/Type");
        require(type != "/Page" && type != "/Pages" && plainReference(type) <= 0);
        std::vector<PlainObject::Entry> entries = dictionary.entries();
        const auto byKey = [](const auto& a, const auto& b) { return a.first < b.first; };
        std::sort(entries.begin(), entries.end(), byKey);
        std::string_view last;
        for (const auto& [key, value] : entries) {
            // Readers differ in which of two entries with one key they take.
            require(key != last);
            last = key;
            if (!dictionary.isStream() || key != "/Length")
                addEntry(key, value);
        }
    }

    void addEntry(std::string_view key, std::string_view value) {
        if (value == "null")
            return;
        if (!value.starts_with("<<") && !value.starts_with('[')) {
            addWord(key, value);
            return;
        }
        m_words.push_back({key});
        add(value);
    }

    void addArray(const PlainObject& array) {
        const std::vector<std::string_view>& items = array.items();
        require(items.empty() || items.front() != "/ICCBased" || isOfSeveralComponents(items));
        m_words.push_back({"["});
        for (const std::string_view item : items)
            add(item);
        m_words.push_back({"]"});
    }

    bool isOfSeveralComponents(const std::vector<std::string_view>& space) const {
        const int profile = space.size() == 2 ? plainReference(space[1]) : 0;
        if (profile <= 0)
            return false;
        PlainObject stream;
        m_file.read(profile, stream);
        return plainNumber(stream.entry("/N")) > 1;
    }

    PlainWords& m_words;
    const PlainFile& m_file;
};

}  // namespace

void addPlainWords(PlainWords& words, const PlainObject& object, const PlainFile& file) {
    require(object.isVerbatim());
    Collection(words, file).add(object);
}

void addPlainWords(PlainWords& words, std::string_view value, const PlainFile& file) {
    Collection(words, file).add(value);
}

}  // namespace vellmora
