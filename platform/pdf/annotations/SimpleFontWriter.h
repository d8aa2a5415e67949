#pragma once

#include "platform/pdf/annotations/SimpleFont.h"
#include "platform/pdf/annotations/TextWriter.h"
#include "platform/pdf/drawing/FormDrawing.h"

namespace vellmora {

/// Writes with a font of the file, a byte a character.
class SimpleFontWriter : public TextWriter {
public:
    /// `name` is the font's in the drawing's resources. All must outlive the writer.
    SimpleFontWriter(FormDrawing& drawing, const SimpleFont& font, std::string name);

    double width(const QString& text) const override { return m_font.width(m_font.encoded(text)); }
    void begin(double size) override;
    void show(const TextLine& line, Point at) override;

private:
    FormDrawing& m_drawing;
    const SimpleFont& m_font;
    std::string m_name;
};

}  // namespace vellmora
