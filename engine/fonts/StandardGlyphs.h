#pragma once

#include <array>
#include <string_view>

namespace vellmora {

/// A design of the standard 14 fonts, which every reader has; slanted ones have the widths of the upright.
enum class StandardFace {
    helvetica,
    helveticaBold,
    times,
    timesBold,
    timesItalic,
    timesBoldItalic,
    courier,
    symbol,
    dingbats
};

struct StandardGlyph {
    char16_t character;
    std::string_view name;
    std::array<short, 6> widths;  ///< in thousandths of an em, by the first six of StandardFace
};

/// The face that stands in for a font of this name; Helvetica for a name that says nothing.
StandardFace standardFace(std::string_view baseFont);

/// Of the standard Latin character set; null for all others.
const StandardGlyph* standardGlyph(char32_t character);
const StandardGlyph* standardGlyph(std::string_view name);

/// In thousandths of an em, of a code that stands for the character; 0 where the face does not have it.
double standardWidth(StandardFace face, unsigned char code, char32_t character);

}  // namespace vellmora
