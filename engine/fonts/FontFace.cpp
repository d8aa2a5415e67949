#include "engine/fonts/FontFace.h"

#include <array>
#include <utility>

#include <QFile>

// Qt's macro must be called outside of any namespace.
static void initializeResources() {
    Q_INIT_RESOURCE(vellmora_fonts);
}

namespace vellmora {

namespace {

QByteArray read(const QString& name) {
    initializeResources();
    QFile file(name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

hb_face_t* makeFace(const QByteArray& data) {
    hb_blob_t* blob = hb_blob_create(data.constData(), static_cast<unsigned>(data.size()),
                                     HB_MEMORY_MODE_READONLY, nullptr, nullptr);
    hb_face_t* face = hb_face_create(blob, 0);
    hb_blob_destroy(blob);
    return face;
}

}  // namespace

FontFace::FontFace(std::string name, const QString& file)
    : m_name(std::move(name)),
      m_data(read(file)),
      m_face(makeFace(m_data)),
      m_font(hb_font_create(m_face.get())),
      m_unitsPerEm(hb_face_get_upem(m_face.get())) {}

bool FontFace::has(char32_t character) const {
    hb_codepoint_t glyph = 0;
    return hb_font_get_nominal_glyph(font(), character, &glyph) != 0;
}

double FontFace::advance(hb_codepoint_t glyph) const {
    return thousandths(hb_font_get_glyph_h_advance(font(), glyph));
}

const FontFace& FontFaces::at(size_t index, FontWeight weight) const {
    // Of each weight the second has Arabic, Hebrew and many signs besides.
    static constexpr std::array<const char*, allFaces> names{"Roboto-Bold", "DejaVuSans-Bold",
                                                             "Roboto-Regular", "DejaVuSans"};
    const size_t place = weight == FontWeight::bold ? index : index + boldFaces;
    if (!m_faces[place]) {
        const QString file = QStringLiteral(":/fonts/%1.ttf").arg(QLatin1String(names[place]));
        m_faces[place] = std::make_unique<FontFace>(names[place], file);
    }
    return *m_faces[place];
}

const FontFace* FontFaces::faceFor(char32_t character, FontWeight weight) const {
    for (size_t i = 0; i < count(weight); ++i) {
        if (at(i, weight).has(character))
            return &at(i, weight);
    }
    return nullptr;
}

}  // namespace vellmora
