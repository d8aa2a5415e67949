#pragma once

#include "engine/objects/Qpdf.h"

#include <array>
#include <map>
#include <optional>

namespace vellmora {

/// Which characters the codes of a font of one byte a character stand for.
class FontEncoding {
public:
    explicit FontEncoding(QPDFObjectHandle font);

    /// 0 where the file does not say it.
    char32_t character(unsigned char code) const { return m_characters[code]; }
    std::optional<unsigned char> code(char32_t character) const;

private:
    void readBase(QPDFObjectHandle font);
    void readDifferences(QPDFObjectHandle differences);

    std::array<char32_t, 256> m_characters{};
    std::map<char32_t, unsigned char> m_codes;
};

/// Whether the file brings the font's glyphs.
bool isEmbedded(QPDFObjectHandle font);

/// The font's name without the slash, empty where it has none.
std::string baseFontName(QPDFObjectHandle font);

/// Whether its letters are bold, as far as the file says it.
bool isBold(QPDFObjectHandle font);

}  // namespace vellmora
