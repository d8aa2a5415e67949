#include "engine/objects/ContentText.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include <QByteArray>

namespace vellmora {

double parsedNumber(std::string_view text) {
    if (text.starts_with('+'))
        text.remove_prefix(1);
    double value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value);
    return std::isfinite(value) ? value : 0;
}

std::string pdfNumber(double value) {
    if (!std::isfinite(value))
        value = 0;
    value = std::clamp(value, -greatestNumber, greatestNumber);
    std::string text = QByteArray::number(value, 'f', 6).toStdString();
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.')
        text.pop_back();
    return text == "-0" ? "0" : text;
}

std::string paintObject(const std::string& name, const Matrix& matrix) {
    std::string text = "q ";
    if (!matrix.isIdentity()) {
        for (const double value : {matrix.m11, matrix.m12, matrix.m21, matrix.m22, matrix.dx, matrix.dy})
            text += pdfNumber(value) + ' ';
        text += "cm ";
    }
    return text + name + " Do Q\n";
}

}  // namespace vellmora
