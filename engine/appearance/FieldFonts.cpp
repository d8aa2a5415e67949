#include "engine/appearance/FieldFonts.h"

#include "engine/appearance/ProgramFontWriter.h"
#include "engine/appearance/SimpleFont.h"

namespace vellmora {

namespace {

QPDFObjectHandle findFont(QPDFObjectHandle resources, const std::string& name) {
    QPDFObjectHandle fonts =
        resources.isDictionary() ? resources.getKey("/Font") : QPDFObjectHandle::newNull();
    return fonts.isDictionary() && !name.empty() ? fonts.getKey(name) : QPDFObjectHandle::newNull();
}

/// Line breaks are not written.
QString withoutBreaks(QString text) {
    return text.remove(QLatin1Char('\n'));
}

}  // namespace

const TextStyle& FieldFonts::style(const std::string& defaultAppearance) {
    const auto [known, isNew] = m_styles.try_emplace(defaultAppearance);
    if (isNew)
        known->second = parseDefaultAppearance(defaultAppearance);
    return known->second;
}

const SimpleFont& FieldFonts::simpleFont(const QPDFObjectHandle& resources, const std::string& name) {
    QPDFObjectHandle font = findFont(resources, name);
    if (font.isDictionary() && !font.getKey("/Subtype").isNameAndEquals("/Type0")) {
        m_font = m_fonts.get(font, [&] { return SimpleFont(font); });
        return *m_font;
    }
    auto& helvetica = m_helvetica[isBold(font)];
    if (!helvetica)
        helvetica =
            std::make_shared<SimpleFont>(standardFont(isBold(font) ? "/Helvetica-Bold" : "/Helvetica"));
    return *helvetica;
}

bool FieldFonts::canWrite(const QString& text, const QPDFObjectHandle& resources,
                          const std::string& fontName) {
    const QString letters = withoutBreaks(text);
    return simpleFont(resources, fontName).canWrite(letters) || m_programFonts.canWrite(letters);
}

std::unique_ptr<TextWriter> FieldFonts::writer(FormBuilder& drawing, const QString& text,
                                               const QPDFObjectHandle& resources, const std::string& fontName,
                                               const std::string& nameInDrawing) {
    const SimpleFont& font = simpleFont(resources, fontName);
    if (!font.canWrite(withoutBreaks(text)))
        return std::make_unique<ProgramFontWriter>(
            drawing, m_programFonts, isBold(font.dictionary()) ? FontWeight::bold : FontWeight::regular);
    drawing.addFont(nameInDrawing, m_copier.copy(font.dictionary()));
    return std::make_unique<SimpleFontWriter>(drawing, font, nameInDrawing);
}

}  // namespace vellmora
