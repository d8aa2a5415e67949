#pragma once

#include "engine/appearance/FormBuilder.h"
#include "engine/appearance/ObjectCache.h"
#include "engine/appearance/SimpleFont.h"
#include "engine/appearance/TextStyle.h"
#include "engine/appearance/TextWriter.h"
#include "engine/fonts/ProgramFonts.h"
#include "engine/output/ObjectCopier.h"

#include <map>
#include <memory>
#include <string>

namespace vellmora {

/// The fonts that the fields and notes of one output are written with; each is read once.
class FieldFonts {
public:
    explicit FieldFonts(ObjectCopier& copier) : m_copier(copier), m_programFonts(copier.output()) {}

    const TextStyle& style(const std::string& defaultAppearance);
    /// Whether the text can be written letter by letter, in the named font of the resources or another.
    bool canWrite(const QString& text, const QPDFObjectHandle& resources, const std::string& fontName);
    /// Writes with the named font of the resources where it has all letters of the text, else with the
    /// program's own. Helvetica stands in for a font that is missing or takes more than one byte a character.
    /// What stands in for a bold font is bold.
    /// `nameInDrawing` is what the drawing calls it.
    std::unique_ptr<TextWriter> writer(FormBuilder& drawing, const QString& text,
                                       const QPDFObjectHandle& resources, const std::string& fontName,
                                       const std::string& nameInDrawing);
    /// To be called once, when no more text will come.
    void finish() { m_programFonts.finish(); }

private:
    const SimpleFont& simpleFont(const QPDFObjectHandle& resources, const std::string& name);

    ObjectCopier& m_copier;
    ProgramFonts m_programFonts;
    ObjectCache<SimpleFont> m_fonts;
    ObjectCache<SimpleFont>::Pointer m_font;                       ///< the last that was asked for
    std::map<bool, ObjectCache<SimpleFont>::Pointer> m_helvetica;  ///< by whether it is bold
    std::map<std::string, TextStyle> m_styles;
};

}  // namespace vellmora
