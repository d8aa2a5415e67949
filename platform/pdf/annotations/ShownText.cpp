#include "platform/pdf/annotations/ShownText.h"

#include <exception>

namespace vellmora {

namespace {

class StringCollector : public QPDFObjectHandle::ParserCallbacks {
public:
    void handleObject(QPDFObjectHandle object, size_t, size_t) override {
        if (object.isString())
            m_text += object.getStringValue();
        if (!object.isArray())
            return;
        for (const QPDFObjectHandle& item : object.aitems())
            handleObject(item, 0, 0);
    }
    void handleEOF() override {}
    const std::string& text() const { return m_text; }

private:
    std::string m_text;
};

}  // namespace

std::string withoutSpaces(const std::string& text) {
    std::string result;
    for (const char c : text) {
        if (static_cast<unsigned char>(c) > ' ')
            result += c;
    }
    return result;
}

std::string shownText(const QPDFObjectHandle& form) {
    StringCollector strings;
    try {
        QPDFObjectHandle::parseContentStream(form, &strings);
    } catch (const std::exception&) {
        return {};
    }
    return withoutSpaces(strings.text());
}

}  // namespace vellmora
