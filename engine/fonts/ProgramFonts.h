#pragma once

#include "engine/fonts/EmbeddedFont.h"
#include "engine/fonts/FontFace.h"

#include <map>

#include <QString>

namespace vellmora {

/// The program's own fonts in one output, for letters that a file's fonts do not have. All texts of the
/// output share one subset of each.
class ProgramFonts {
public:
    explicit ProgramFonts(QPDF& output) : m_output(output) {}

    const FontFaces& faces() const { return m_faces; }
    /// Whether they have all characters of the text.
    bool canWrite(const QString& text) const;
    EmbeddedFont& embedded(const FontFace& face);
    /// To be called once, when no more text will come.
    void finish();

private:
    QPDF& m_output;
    FontFaces m_faces;
    std::map<const FontFace*, EmbeddedFont> m_fonts;
};

}  // namespace vellmora
