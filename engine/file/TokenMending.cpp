#include "engine/file/TokenMending.h"

#include "engine/objects/Characters.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <optional>
#include <utility>

namespace vellmora {

namespace {

constexpr std::string_view space{" \t\r\n\f\0", 6};
constexpr std::string_view endsWord{" \t\r\n\f\0()<>[]{}/%", 16};
constexpr std::string_view digits = "0123456789";
/// libqpdf takes 499 containers within one another.
constexpr size_t greatestDepth = 480;

/// The words of an object, one after the other.
class Words {
public:
    Words(std::string_view text, size_t position) : m_text(text), m_end(position) {}

    /// False at the end of the text, also where it ends within a word.
    bool next() {
        skipSpace();
        if (m_end >= m_text.size())
            return false;
        m_begin = m_end;
        m_end = findEnd();
        return m_end <= m_text.size();
    }
    size_t begin() const { return m_begin; }
    size_t end() const { return m_end; }
    std::string_view word() const { return m_text.substr(m_begin, m_end - m_begin); }

private:
    void skipSpace() {
        m_end = std::min(m_text.find_first_not_of(space, m_end), m_text.size());
        while (m_end < m_text.size() && m_text[m_end] == '%') {
            m_end = std::min(m_text.find_first_of("\r\n", m_end), m_text.size());
            m_end = std::min(m_text.find_first_not_of(space, m_end), m_text.size());
        }
    }

    size_t findEnd() const {
        switch (m_text[m_begin]) {
            case '(':
                return findStringEnd();
            case '<':
                return isTwice() ? m_begin + 2 : behind(m_text.find('>', m_begin));
            case '>':
                return isTwice() ? m_begin + 2 : m_begin + 1;
            case '[':
            case ']':
            case '{':
            case '}':
            case ')':
                return m_begin + 1;
            default:
                return std::min(m_text.find_first_of(endsWord, m_begin + 1), m_text.size());
        }
    }

    bool isTwice() const { return m_begin + 1 < m_text.size() && m_text[m_begin + 1] == m_text[m_begin]; }
    static size_t behind(size_t position) {
        return position == std::string_view::npos ? position : position + 1;
    }

    size_t findStringEnd() const {
        size_t depth = 0;
        for (size_t at = m_begin; at < m_text.size(); ++at) {
            if (m_text[at] == '\\')
                ++at;
            else if (m_text[at] == '(')
                ++depth;
            else if (m_text[at] == ')' && --depth == 0)
                return at + 1;
        }
        return std::string_view::npos;
    }

    std::string_view m_text;
    size_t m_begin = 0;
    size_t m_end;
};

bool isWhole(std::string_view word) {
    const std::string_view unsignedWord = word.substr(isOneOf("+-", word.front()) ? 1 : 0);
    return !unsignedWord.empty() && unsignedWord.find_first_not_of(digits) == std::string_view::npos;
}

bool isReal(std::string_view word) {
    const std::string_view unsignedWord = word.substr(isOneOf("+-", word.front()) ? 1 : 0);
    return unsignedWord.find_first_not_of("0123456789.") == std::string_view::npos &&
           unsignedWord.find_first_of(digits) != std::string_view::npos &&
           std::count(unsignedWord.begin(), unsignedWord.end(), '.') == 1;
}

/// Whether a whole number is one of the type.
template <typename Integer>
bool fits(std::string_view word) {
    if (word.front() == '+')
        word.remove_prefix(1);
    Integer value = 0;
    return std::from_chars(word.data(), word.data() + word.size(), value).ec == std::errc();
}

std::string padded(std::string text, size_t length) {
    text.resize(length, ' ');
    return text;
}

class ObjectMending {
public:
    ObjectMending(std::string_view text, size_t position) : m_words(text, position) {}

    std::vector<Mend> mends() {
        while (m_words.next()) {
            if (!takeWord())
                break;
        }
        return std::move(m_mends);
    }

private:
    struct Place {
        size_t begin;
        size_t end;
    };

    struct Number {
        size_t begin;
        bool isReferable;
    };

    /// False at the end of the object.
    bool takeWord() {
        const std::string_view word = m_words.word();
        if (word == "endobj" || word == "stream" || word == "obj") {
            if (word == "stream" && m_length)
                replace(*m_length, "0");
            return false;
        }
        if (word == "<<" || word == "[")
            open(word.front());
        else if (word == ">>" || word == "]")
            close(word.front());
        else if (m_open.size() <= greatestDepth)
            takeValue(word);
        return true;
    }

    void open(char bracket) {
        m_open.push_back(bracket);
        m_numbers.clear();
        if (m_open.size() == greatestDepth + 1)
            m_tooDeep = m_words.begin();
    }

    void close(char bracket) {
        m_numbers.clear();
        if (m_open.empty() || m_open.back() != (bracket == '>' ? '<' : '[')) {
            if (m_open.size() <= greatestDepth)
                replace(here(), "");
            return;
        }
        if (m_open.size() == greatestDepth + 1)
            replaceByNull({m_tooDeep, m_words.end()});
        m_open.pop_back();
    }

    void takeValue(std::string_view word) {
        if (isWhole(word)) {
            takeWholeNumber(word);
            return;
        }
        if (word == "R")
            takeReference();
        else if (word.front() == '<')
            takeHexString(word);
        else if (isOneOf("{}>)", word.front()))
            replace(here(), "");
        else if (word.front() != '/' && word.front() != '(' && word != "true" && word != "false" &&
                 word != "null" && !isReal(word))
            takeUnknownWord(word);
        m_numbers.clear();
        m_isLength = word == "/Length" && m_open.size() == 1;
    }

    void takeWholeNumber(std::string_view word) {
        if (!fits<long long>(word))
            replace(here(), word.front() == '-' ? "-2147483647" : "2147483647");
        m_numbers.push_back({m_words.begin(), fits<int>(word)});
        if (m_numbers.size() > 2)
            m_numbers.erase(m_numbers.begin());
    }

    void takeReference() {
        if (m_numbers.size() < 2) {
            replaceByNull(here());
            return;
        }
        const Place whole{m_numbers.front().begin, m_words.end()};
        if (!m_numbers.front().isReferable || !m_numbers.back().isReferable)
            replaceByNull(whole);
        if (m_isLength)
            m_length = whole;
    }

    void takeHexString(std::string_view word) {
        std::string text(word);
        std::replace_if(
            text.begin() + 1, text.end() - 1, [](char c) { return !isOneOf("0123456789abcdefABCDEF", c); },
            ' ');
        if (text != word)
            replace(here(), text);
    }

    /// Other readers take a number as far as it is one.
    void takeUnknownWord(std::string_view word) {
        const std::string_view rest = word.substr(std::min(word.find_first_not_of("+-"), word.size()));
        double value = 0;
        const auto parsed =
            std::from_chars(rest.data(), rest.data() + rest.size(), value, std::chars_format::fixed);
        const std::string number(rest.data(), parsed.ptr);
        if (number.empty() || isOneOf("in", number.front()) || (isWhole(number) && !fits<long long>(number)))
            replaceByNull(here());
        else
            replace(here(), (word.front() == '-' ? "-" : "") + number);
    }

    Place here() const { return {m_words.begin(), m_words.end()}; }

    void replace(Place place, std::string text) {
        m_mends.push_back({place.begin, padded(std::move(text), place.end - place.begin)});
    }
    void replaceByNull(Place place) { replace(place, place.end - place.begin < 4 ? "0" : "null"); }

    Words m_words;
    std::string m_open;  ///< the brackets that are open
    size_t m_tooDeep = 0;
    std::vector<Number> m_numbers;  ///< the whole numbers directly before, at most two
    bool m_isLength = false;        ///< the words before are the key and at most numbers
    std::optional<Place> m_length;
    std::vector<Mend> m_mends;
};

}  // namespace

std::vector<Mend> mendsOfObject(std::string_view text, size_t position) {
    return ObjectMending(text, position).mends();
}

void applyMends(const std::vector<Mend>& mends, char* text) {
    for (const Mend& mend : mends)
        mend.text.copy(text + mend.position, mend.text.size());
}

}  // namespace vellmora
