#pragma once

#include <array>
#include <hb.h>
#include <memory>
#include <string>

#include <QByteArray>

namespace vellmora {

/// One of the program's own fonts, with glyphs of TrueType outlines.
class FontFace {
public:
    /// `name` as it stands in a PDF; `file` is a resource of the program.
    FontFace(std::string name, const QString& file);

    const std::string& name() const { return m_name; }
    const QByteArray& data() const { return m_data; }
    hb_face_t* face() const { return m_face.get(); }
    hb_font_t* font() const { return m_font.get(); }

    bool has(char32_t character) const;
    /// The font's own units in thousandths of an em.
    double thousandths(int units) const { return units * 1000.0 / m_unitsPerEm; }
    /// In thousandths of an em.
    double advance(hb_codepoint_t glyph) const;

private:
    struct Release {
        void operator()(hb_face_t* face) const { hb_face_destroy(face); }
        void operator()(hb_font_t* font) const { hb_font_destroy(font); }
    };

    std::string m_name;
    QByteArray m_data;
    std::unique_ptr<hb_face_t, Release> m_face;
    std::unique_ptr<hb_font_t, Release> m_font;
    double m_unitsPerEm;
};

enum class FontWeight { regular, bold };

/// The fonts that letters are looked for in, each loaded when the first letter is looked for in it.
class FontFaces {
public:
    /// How many there are for a weight. For bold letters the regular ones come last.
    static constexpr size_t count(FontWeight weight) {
        return weight == FontWeight::bold ? allFaces : allFaces - boldFaces;
    }
    const FontFace& at(size_t index, FontWeight weight) const;
    /// The first that has the character; nothing where none has.
    const FontFace* faceFor(char32_t character, FontWeight weight) const;

private:
    static constexpr size_t boldFaces = 2;
    static constexpr size_t allFaces = 4;

    mutable std::array<std::unique_ptr<FontFace>, allFaces> m_faces;
};

}  // namespace vellmora
