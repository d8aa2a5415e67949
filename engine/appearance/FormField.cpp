#include "engine/appearance/FormField.h"

#include <utility>

namespace vellmora {

namespace {

constexpr int maxDepth = 100;  // of fields above one another; a loop ends there

}  // namespace

QString textOf(QPDFObjectHandle object) {
    if (object.isName())
        return QString::fromStdString(object.getName()).mid(1);
    if (!object.isString())
        return {};
    QString text = QString::fromStdString(object.getUTF8Value());
    text.replace(QLatin1Char('\t'), QLatin1Char(' '));
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n")).replace(QLatin1Char('\r'), QLatin1Char('\n'));
    return text;
}

FormField::FormField(Annotation widget, const ParsedFile& source)
    : m_widget(std::move(widget)), m_form(source.catalog().getKey("/AcroForm")) {
    QPDFObjectHandle type = attribute("/FT");
    if (type.isName())
        m_type = type.getName();
    QPDFObjectHandle flags = attribute("/Ff");
    if (flags.isInteger())
        m_flags = flags.getIntValue();
}

QPDFObjectHandle FormField::attribute(const char* key) const {
    QPDFObjectHandle value = m_widget.entry(key);
    QPDFObjectHandle parent = m_widget.entry("/Parent");
    for (int depth = 0; value.isNull() && parent.isDictionary() && depth < maxDepth; ++depth) {
        value = parent.getKey(key);
        parent = parent.getKey("/Parent");
    }
    return value;
}

QPDFObjectHandle FormField::attributeOrForm(const char* key) const {
    QPDFObjectHandle own = attribute(key);
    QPDFObjectHandle form = m_form;
    return own.isNull() && form.isDictionary() ? form.getKey(key) : own;
}

QString FormField::text(const char* key) const {
    return textOf(attribute(key));
}

std::string FormField::defaultAppearance() const {
    QPDFObjectHandle value = attributeOrForm("/DA");
    return value.isString() ? value.getStringValue() : std::string();
}

int FormField::alignment() const {
    QPDFObjectHandle value = attributeOrForm("/Q");
    return value.isInteger() && value.getIntValue() >= 0 && value.getIntValue() <= 2
               ? static_cast<int>(value.getIntValue())
               : 0;
}

QPDFObjectHandle FormField::resources() const {
    return attributeOrForm("/DR");
}

}  // namespace vellmora
