#include "engine/fonts/EmbeddedFont.h"

#include "engine/fonts/UnicodeMap.h"

#include <cmath>
#include <hb-ot.h>
#include <hb-subset.h>
#include <limits>
#include <memory>

namespace vellmora {

namespace {

template <typename Object, void (*destroy)(Object*)>
struct Release {
    void operator()(Object* object) const { destroy(object); }
};
using Input = std::unique_ptr<hb_subset_input_t, Release<hb_subset_input_t, hb_subset_input_destroy>>;
using Plan = std::unique_ptr<hb_subset_plan_t, Release<hb_subset_plan_t, hb_subset_plan_destroy>>;
using Face = std::unique_ptr<hb_face_t, Release<hb_face_t, hb_face_destroy>>;
using Blob = std::unique_ptr<hb_blob_t, Release<hb_blob_t, hb_blob_destroy>>;

QPDFObjectHandle name(const std::string& text) {
    return QPDFObjectHandle::newName(text);
}

QPDFObjectHandle number(double value) {
    return QPDFObjectHandle::newInteger(std::lround(value));
}

/// What a reader of text needs and a page does not: its glyphs are chosen and placed already.
void dropTables(hb_subset_input_t* input) {
    hb_set_t* dropped = hb_subset_input_set(input, HB_SUBSET_SETS_DROP_TABLE_TAG);
    for (const char* tag : {"GSUB", "GPOS", "GDEF", "name", "post", "OS/2", "cmap", "kern", "DSIG", "gasp"})
        hb_set_add(dropped, hb_tag_from_string(tag, -1));
}

void appendCode(std::string& bytes, unsigned value) {
    bytes += static_cast<char>(value >> 8);
    bytes += static_cast<char>(value & 0xFF);
}

}  // namespace

struct EmbeddedFont::Subset {
    std::string data;
    Plan plan;  ///< none: the whole font

    unsigned glyph(hb_codepoint_t original) const {
        if (!plan)
            return original;
        const hb_codepoint_t place =
            hb_map_get(hb_subset_plan_old_to_new_glyph_mapping(plan.get()), original);
        return place == HB_MAP_VALUE_INVALID ? 0 : place;
    }
};

EmbeddedFont::EmbeddedFont(QPDF& output, const FontFace& face)
    : m_output(output),
      m_face(face),
      m_dictionary(output.makeIndirectObject(QPDFObjectHandle::newDictionary())),
      m_glyphs{{0, QString()}} {}

uint16_t EmbeddedFont::code(hb_codepoint_t glyph, const QString& text) {
    if (m_glyphs.size() > std::numeric_limits<uint16_t>::max())
        return 0;
    const auto [known, isNew] = m_codes.try_emplace({glyph, text}, static_cast<uint16_t>(m_glyphs.size()));
    if (isNew)
        m_glyphs.emplace_back(glyph, text);
    return known->second;
}

double EmbeddedFont::width(hb_codepoint_t glyph) const {
    return std::round(m_face.advance(glyph));
}

EmbeddedFont::Subset EmbeddedFont::makeSubset() const {
    const Input input(hb_subset_input_create_or_fail());
    Subset whole{m_face.data().toStdString(), nullptr};
    if (!input)
        return whole;
    for (const auto& [glyph, text] : m_glyphs)
        hb_set_add(hb_subset_input_glyph_set(input.get()), glyph);
    hb_subset_input_set_flags(input.get(), HB_SUBSET_FLAGS_NO_HINTING | HB_SUBSET_FLAGS_NOTDEF_OUTLINE);
    dropTables(input.get());
    Plan plan(hb_subset_plan_create_or_fail(m_face.face(), input.get()));
    const Face face(plan ? hb_subset_plan_execute_or_fail(plan.get()) : nullptr);
    if (!face)
        return whole;
    const Blob blob(hb_face_reference_blob(face.get()));
    unsigned length = 0;
    const char* data = hb_blob_get_data(blob.get(), &length);
    return {std::string(data, length), std::move(plan)};
}

/// Six letters before the name say that the font is a part, and which (ISO 32000-2, 9.9.2).
std::string EmbeddedFont::name() const {
    uint32_t hash = 2166136261;
    for (const auto& [glyph, text] : m_glyphs)
        hash = (hash ^ glyph) * 16777619;
    std::string tag;
    for (int i = 0; i < 6; ++i, hash /= 26)
        tag += static_cast<char>('A' + hash % 26);
    return '/' + tag + '+' + m_face.name();
}

QPDFObjectHandle EmbeddedFont::descriptor(const Subset& subset) const {
    hb_font_extents_t extents{};
    hb_font_get_h_extents(m_face.font(), &extents);
    const double ascender = m_face.thousandths(extents.ascender);
    const double descender = m_face.thousandths(extents.descender);
    QPDFObjectHandle file = m_output.newStream(subset.data);
    file.getDict().replaceKey("/Length1", number(static_cast<double>(subset.data.size())));
    QPDFObjectHandle box = QPDFObjectHandle::newArray();
    for (const double edge : {-1000.0, descender, 2000.0, ascender})
        box.appendItem(number(edge));
    QPDFObjectHandle descriptor = QPDFObjectHandle::newDictionary();
    descriptor.replaceKey("/Type", vellmora::name("/FontDescriptor"));
    descriptor.replaceKey("/FontName", vellmora::name(name()));
    descriptor.replaceKey("/Flags", QPDFObjectHandle::newInteger(4));
    descriptor.replaceKey("/FontBBox", box);
    descriptor.replaceKey("/ItalicAngle", QPDFObjectHandle::newInteger(0));
    descriptor.replaceKey("/Ascent", number(ascender));
    descriptor.replaceKey("/Descent", number(descender));
    descriptor.replaceKey("/CapHeight", number(ascender));
    descriptor.replaceKey("/StemV", QPDFObjectHandle::newInteger(80));
    descriptor.replaceKey("/FontFile2", file);
    return m_output.makeIndirectObject(descriptor);
}

QPDFObjectHandle EmbeddedFont::widths() const {
    QPDFObjectHandle widths = QPDFObjectHandle::newArray();
    for (const auto& [glyph, text] : m_glyphs)
        widths.appendItem(number(width(glyph)));
    QPDFObjectHandle array = QPDFObjectHandle::newArray();
    array.appendItem(QPDFObjectHandle::newInteger(0));
    array.appendItem(widths);
    return array;
}

std::string EmbeddedFont::glyphMap(const Subset& subset) const {
    std::string map;
    for (const auto& [glyph, text] : m_glyphs)
        appendCode(map, subset.glyph(glyph));
    return map;
}

std::string EmbeddedFont::unicodeMap() const {
    std::vector<QString> texts;
    for (const auto& [glyph, text] : m_glyphs)
        texts.push_back(text);
    return unicodeMapText(texts);
}

void EmbeddedFont::finish() {
    const Subset subset = makeSubset();
    QPDFObjectHandle system = QPDFObjectHandle::newDictionary();
    system.replaceKey("/Registry", QPDFObjectHandle::newString("Adobe"));
    system.replaceKey("/Ordering", QPDFObjectHandle::newString("Identity"));
    system.replaceKey("/Supplement", QPDFObjectHandle::newInteger(0));
    QPDFObjectHandle descendant = QPDFObjectHandle::newDictionary();
    descendant.replaceKey("/Type", vellmora::name("/Font"));
    descendant.replaceKey("/Subtype", vellmora::name("/CIDFontType2"));
    descendant.replaceKey("/BaseFont", vellmora::name(name()));
    descendant.replaceKey("/CIDSystemInfo", system);
    descendant.replaceKey("/FontDescriptor", descriptor(subset));
    descendant.replaceKey("/W", widths());
    descendant.replaceKey("/CIDToGIDMap", m_output.newStream(glyphMap(subset)));
    QPDFObjectHandle descendants = QPDFObjectHandle::newArray();
    descendants.appendItem(m_output.makeIndirectObject(descendant));
    m_dictionary.replaceKey("/Type", vellmora::name("/Font"));
    m_dictionary.replaceKey("/Subtype", vellmora::name("/Type0"));
    m_dictionary.replaceKey("/BaseFont", vellmora::name(name()));
    m_dictionary.replaceKey("/Encoding", vellmora::name("/Identity-H"));
    m_dictionary.replaceKey("/DescendantFonts", descendants);
    m_dictionary.replaceKey("/ToUnicode", m_output.newStream(unicodeMap()));
}

}  // namespace vellmora
