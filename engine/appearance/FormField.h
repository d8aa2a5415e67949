#pragma once

#include "engine/appearance/Annotation.h"
#include "engine/file/ParsedFile.h"

#include <string>

#include <QString>

namespace vellmora {

// Field flags (ISO 32000-2, tables 229, 231 and 233), counted from 1.
constexpr int multilineFlag = 13;
constexpr int passwordFlag = 14;
constexpr int radioFlag = 16;
constexpr int pushButtonFlag = 17;
constexpr int comboFlag = 18;
constexpr int combFlag = 25;

/// The form field that a widget annotation shows. Attributes are taken from the widget, from the fields above
/// it and, where the standard says so, from the form.
class FormField {
public:
    FormField(Annotation widget, const ParsedFile& source);

    bool is(const char* type) const { return m_type == type; }
    /// `bit` is counted from 1, as in the standard's tables.
    bool hasFlag(int bit) const { return (m_flags >> (bit - 1) & 1) != 0; }
    QPDFObjectHandle attribute(const char* key) const;
    /// Empty where the value is no string or name.
    QString text(const char* key) const;
    std::string defaultAppearance() const;
    /// 0 left, 1 centred, 2 right.
    int alignment() const;
    /// The resources that its default appearance names; null where there are none.
    QPDFObjectHandle resources() const;

private:
    QPDFObjectHandle attributeOrForm(const char* key) const;

    Annotation m_widget;
    QPDFObjectHandle m_form;
    std::string m_type;
    long long m_flags = 0;
};

/// A string's or a name's text, with line feeds for line breaks of every kind; empty for all else.
QString textOf(QPDFObjectHandle object);

}  // namespace vellmora
