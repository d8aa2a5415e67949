#pragma once

#include <string>

namespace vellmora {

/// What a default appearance string (/DA) says of text.
struct TextStyle {
    std::string fontName;  ///< with its slash; empty where none is named
    double fontSize = 0;   ///< in points; 0: as large as fits
    std::string color;     ///< content operators
};

TextStyle parseDefaultAppearance(const std::string& text);

}  // namespace vellmora
