#pragma once

#include <string_view>

namespace vellmora {

/// The character that a glyph's name stands for, without slash ("Adieresis", "uni0141", "afii10017"); 0 where
/// the name says nothing.
char32_t characterOfGlyph(std::string_view name);

}  // namespace vellmora
