#include "platform/pdf/annotations/SimpleFontWriter.h"

#include "platform/pdf/drawing/ContentText.h"

#include <utility>

namespace vellmora {

SimpleFontWriter::SimpleFontWriter(FormDrawing& drawing, const SimpleFont& font, std::string name)
    : m_drawing(drawing), m_font(font), m_name(std::move(name)) {}

void SimpleFontWriter::begin(double size) {
    m_drawing.add(m_name + ' ' + pdfNumber(size) + " Tf");
}

void SimpleFontWriter::show(const TextLine& line, Point at) {
    m_drawing.add({1, 0, 0, 1, at.x, at.y}, "Tm");
    m_drawing.add(QPDFObjectHandle::newString(m_font.encoded(line.text)).unparse() + " Tj");
}

}  // namespace vellmora
