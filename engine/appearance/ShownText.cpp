#include "engine/appearance/ShownText.h"

#include "engine/appearance/SimpleFont.h"
#include "engine/fonts/StreamText.h"
#include "engine/objects/DecodedBytes.h"

#include <vector>

namespace vellmora {

namespace {

constexpr size_t largestForm = size_t{512} << 10;

QPDFObjectHandle resource(QPDFObjectHandle resources, const char* kind, const std::string& name) {
    QPDFObjectHandle all = resources.isDictionary() ? resources.getKey(kind) : QPDFObjectHandle::newNull();
    return all.isDictionary() && !name.empty() ? all.getKey(name) : QPDFObjectHandle::newNull();
}

/// Follows a content stream as far as its text goes.
class TextCollector {
public:
    using Font = ObjectCache<FontReader>::Pointer;

    /// The second resources hold for what the first do not have.
    TextCollector(const QPDFObjectHandle& own, const QPDFObjectHandle& outer, ObjectCache<FontReader>& fonts)
        : m_own(own), m_outer(outer), m_fonts(fonts) {
        useFont();
    }

    /// False once it is clear that the text cannot be told.
    bool take(const QPDFTokenizer::Token& token) {
        switch (token.getType()) {
            case QPDFTokenizer::tt_name:
                m_name = token.getValue();
                break;
            case QPDFTokenizer::tt_string:
                m_string += token.getValue();
                break;
            case QPDFTokenizer::tt_integer:
                m_number = token.getValue();
                break;
            case QPDFTokenizer::tt_word:
                perform(token.getValue());
                m_name.clear();
                m_string.clear();
                break;
            default:
                break;
        }
        return m_isReadable;
    }

    /// Where nothing is written, pictures and curves may be letters.
    std::optional<QString> text() const {
        const bool isTold = m_isReadable && !(m_text.isEmpty() && m_hasPictures);
        return isTold ? std::optional(m_text) : std::nullopt;
    }

private:
    struct State {
        Font font;
        bool isVisible = true;
    };

    void perform(const std::string& operation) {
        if (operation == "Tj" || operation == "TJ" || operation == "'" || operation == "\"")
            show();
        else if (operation == "Tf")
            useFont();
        else if (operation == "Tr")
            m_state.isVisible = m_number != "3" && m_number != "7";
        else if (operation == "q" && m_states.size() < deepest)
            m_states.push_back(m_state);
        else if (operation == "Q" && !m_states.empty())
            restore();
        else if (operation == "Do")
            paintObject();
        else if (operation == "BI")
            m_isReadable = false;
        else if (operation == "c" || operation == "v" || operation == "y" || operation == "sh")
            m_hasPictures = true;
    }

    void restore() {
        m_state = m_states.back();
        m_states.pop_back();
    }

    /// Readers write with Helvetica where a font is missing.
    void useFont() {
        QPDFObjectHandle font = find("/Font");
        if (!font.isDictionary())
            font = m_helvetica;
        m_state.font = m_fonts.get(font, [&] { return FontReader(font); });
    }

    QPDFObjectHandle find(const char* kind) const {
        QPDFObjectHandle found = resource(m_own, kind, m_name);
        return found.isNull() ? resource(m_outer, kind, m_name) : found;
    }

    void paintObject() {
        QPDFObjectHandle object = find("/XObject");
        const bool isPicture =
            object.isStream() && object.getDict().getKey("/Subtype").isNameAndEquals("/Image");
        m_hasPictures = m_hasPictures || isPicture;
        m_isReadable = m_isReadable && (isPicture || object.isNull());
    }

    void show() {
        if (m_string.empty() || !m_state.isVisible)
            return;
        const auto text = m_state.font->text(m_string);
        m_isReadable = m_isReadable && text.has_value();
        m_text += text.value_or(QString());
    }

    static constexpr size_t deepest = 100;

    QPDFObjectHandle m_own;
    QPDFObjectHandle m_outer;
    QPDFObjectHandle m_helvetica = standardFont("/Helvetica");
    ObjectCache<FontReader>& m_fonts;
    State m_state;
    std::vector<State> m_states;
    std::string m_name;
    std::string m_string;
    std::string m_number;
    QString m_text;
    bool m_isReadable = true;
    bool m_hasPictures = false;
};

}  // namespace

std::optional<QString> ShownText::of(const QPDFObjectHandle& form, const QPDFObjectHandle& resources) {
    QPDFObjectHandle stream = form;
    if (!stream.isStream())
        return std::nullopt;
    const auto read = [&]() -> std::optional<QString> {
        const auto content = decodedBytes(stream, largestForm);
        if (!content)
            return std::nullopt;
        QPDFObjectHandle own = stream.getDict().getKey("/Resources");
        TextCollector collector(own, resources, m_fonts);
        readTokens(*content, [&](const QPDFTokenizer::Token& token) { return collector.take(token); });
        return collector.text();
    };
    return *m_texts.get(stream, read);
}

}  // namespace vellmora
