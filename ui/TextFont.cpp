#include "ui/TextFont.h"

#include <array>

#include <QFontMetricsF>
#include <QGlyphRun>
#include <QHash>

namespace vellmora {

struct TextFont::Shared {
    QFont font;
    QRawFont face;
    // What is known of plain letters is at hand: lists measure thousands of names.
    std::array<std::optional<std::optional<Glyph>>, 0x80> ascii;
    QHash<QChar, std::optional<std::optional<Glyph>>> others;

    std::optional<Glyph> findGlyph(QChar character) const;
};

namespace {

/// Whether it stands beside its neighbours whatever they are.
bool standsAlone(QChar character) {
    switch (character.script()) {
        case QChar::Script_Latin:
        case QChar::Script_Greek:
        case QChar::Script_Cyrillic:
        case QChar::Script_Common:
            return character.isPrint();
        default:
            return false;
    }
}

double startOf(double width, const QRectF& box, Qt::Alignment alignment) {
    if (alignment & Qt::AlignRight)
        return box.right() - width;
    if (alignment & Qt::AlignHCenter)
        return box.left() + (box.width() - width) / 2;
    return box.left();
}

}  // namespace

TextFont::TextFont(const QFont& font, const QRawFont& face)
    : m_shared(std::make_shared<Shared>(Shared{font, face, {}, {}})) {
    m_shared->face.setPixelSize(font.pixelSize());
}

const QFont& TextFont::font() const {
    return m_shared->font;
}

int TextFont::lineHeight() const {
    return qRound(m_shared->face.ascent()) + qRound(m_shared->face.descent());
}

std::optional<TextFont::Glyph> TextFont::Shared::findGlyph(QChar character) const {
    if (!standsAlone(character))
        return std::nullopt;
    const QList<quint32> index = face.glyphIndexesForString(QString(character));
    if (index.size() != 1 || index.first() == 0)
        return std::nullopt;
    return Glyph{index.first(), face.advancesForGlyphIndexes(index).first().x()};
}

std::optional<TextFont::Glyph> TextFont::glyphOf(QChar character) const {
    const char16_t code = character.unicode();
    auto& known = code < m_shared->ascii.size() ? m_shared->ascii[code] : m_shared->others[character];
    if (!known)
        known = m_shared->findGlyph(character);
    return *known;
}

std::optional<TextFont::Line> TextFont::laidOut(const QString& line) const {
    Line result;
    for (const QChar character : line) {
        const std::optional<Glyph> glyph = glyphOf(character);
        if (!glyph)
            return std::nullopt;
        result.glyphs.append(glyph->index);
        result.positions.append({result.width, 0});
        result.width += glyph->advance;
    }
    return result;
}

double TextFont::width(const QString& line) const {
    double sum = 0;
    for (const QChar character : line) {
        const std::optional<Glyph> glyph = glyphOf(character);
        if (!glyph)
            return QFontMetricsF(font()).horizontalAdvance(line);
        sum += glyph->advance;
    }
    return sum;
}

void TextFont::paint(QPainter& painter, const QRectF& box, Qt::Alignment alignment,
                     const QString& line) const {
    const std::optional<Line> laid = laidOut(line);
    if (!laid) {
        painter.setFont(font());
        painter.drawText(box, static_cast<int>(alignment) | Qt::TextSingleLine | Qt::TextDontClip, line);
        return;
    }
    QGlyphRun run;
    run.setRawFont(m_shared->face);
    run.setGlyphIndexes(laid->glyphs);
    run.setPositions(laid->positions);
    const double ascent = m_shared->face.ascent();
    const double height = ascent + m_shared->face.descent();
    const double above = alignment & Qt::AlignVCenter ? (box.height() - height) / 2 : 0;
    painter.drawGlyphRun({startOf(laid->width, box, alignment), box.top() + above + ascent}, run);
}

}  // namespace vellmora
