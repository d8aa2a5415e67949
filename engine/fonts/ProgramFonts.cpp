#include "engine/fonts/ProgramFonts.h"

#include <algorithm>

#include <QList>

namespace vellmora {

bool ProgramFonts::canWrite(const QString& text) const {
    const auto characters = text.toUcs4();
    return std::all_of(characters.begin(), characters.end(), [&](uint character) {
        return character < ' ' || QChar::category(character) == QChar::Other_Format ||
               m_faces.faceFor(character, FontWeight::regular) != nullptr;
    });
}

EmbeddedFont& ProgramFonts::embedded(const FontFace& face) {
    return m_fonts.try_emplace(&face, m_output, face).first->second;
}

void ProgramFonts::finish() {
    for (auto& [face, font] : m_fonts)
        font.finish();
}

}  // namespace vellmora
