#include "platform/pdf/drawing/ContentText.h"

#include <QByteArray>

namespace vellmora {

std::string pdfNumber(double value) {
    std::string text = QByteArray::number(value, 'f', 6).toStdString();
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.')
        text.pop_back();
    return text == "-0" ? "0" : text;
}

std::string paintObject(const std::string& name, const QTransform& matrix) {
    std::string text = "q ";
    if (!matrix.isIdentity()) {
        for (const double value :
             {matrix.m11(), matrix.m12(), matrix.m21(), matrix.m22(), matrix.dx(), matrix.dy()})
            text += pdfNumber(value) + ' ';
        text += "cm ";
    }
    return text + name + " Do Q\n";
}

}  // namespace vellmora
