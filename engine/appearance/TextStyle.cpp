#include "engine/appearance/TextStyle.h"

#include "engine/objects/ContentText.h"

#include <cmath>
#include <sstream>
#include <vector>

namespace vellmora {

TextStyle parseDefaultAppearance(const std::string& text) {
    TextStyle style;
    std::vector<std::string> operands;
    std::istringstream words(text);
    for (std::string word; words >> word;) {
        if (word == "Tf" && operands.size() >= 2) {
            style.fontName = operands[operands.size() - 2];
            style.fontSize = std::abs(parsedNumber(operands.back()));
            operands.clear();
        } else if (word == "g" || word == "rg" || word == "k") {
            style.color.clear();
            for (const std::string& operand : operands)
                style.color += operand + ' ';
            style.color += word;
            operands.clear();
        } else {
            operands.push_back(word);
        }
    }
    if (style.fontName.empty() || style.fontName.front() != '/')
        style.fontName.clear();
    return style;
}

}  // namespace vellmora
