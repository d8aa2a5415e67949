#pragma once

#include "engine/fonts/FontEncoding.h"
#include "engine/fonts/UnicodeMap.h"

#include <optional>
#include <string>

#include <QString>

namespace vellmora {

/// Reads strings that are shown in a font.
class FontReader {
public:
    explicit FontReader(QPDFObjectHandle font);

    /// Nothing where the file does not say what one of the codes means.
    std::optional<QString> text(const std::string& bytes) const;

private:
    enum class Codes { oneByte, twoBytes, utf16, unknown };

    QString character(uint32_t code) const;
    bool isControl(uint32_t code) const;

    Codes m_codes = Codes::oneByte;
    UnicodeMap m_map;
    std::optional<FontEncoding> m_encoding;
};

}  // namespace vellmora
