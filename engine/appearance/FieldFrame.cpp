#include "engine/appearance/FieldFrame.h"

#include "engine/appearance/SimpleFont.h"
#include "engine/fonts/StandardGlyphs.h"
#include "engine/objects/ContentText.h"

#include <algorithm>
#include <array>

namespace vellmora {

namespace {

Matrix turnedInto(const Rect& rect, int degrees) {
    switch (degrees) {
        case 90:
            return {0, 1, -1, 0, rect.maxX(), rect.minY()};
        case 180:
            return {-1, 0, 0, -1, rect.maxX(), rect.maxY()};
        case 270:
            return {0, -1, 1, 0, rect.minX(), rect.maxY()};
        default:
            return Matrix::translation(rect.minX(), rect.minY());
    }
}

struct Mark {
    char sign;
    double width;   // in ems
    double middle;  // height of its centre above the baseline, in ems
};

// From the published metrics of ZapfDingbats: check mark, cross, star, circle, square, diamond.
constexpr auto marks = std::to_array<Mark>({{'4', 0.755, 0.36},
                                            {'8', 0.760, 0.34},
                                            {'H', 0.816, 0.34},
                                            {'l', 0.791, 0.35},
                                            {'n', 0.761, 0.35},
                                            {'u', 0.788, 0.35}});

struct NamedSign {
    char16_t character;
    char sign;
};

// Signs of ZapfDingbats that Unicode has outside of its block of dingbats, which begins with U+2701 for '!'.
constexpr auto signsElsewhere = std::to_array<NamedSign>({{0x260E, '%'},
                                                          {0x261B, '*'},
                                                          {0x261E, '+'},
                                                          {0x2605, 'H'},
                                                          {0x25CF, 'l'},
                                                          {0x25A0, 'n'},
                                                          {0x25B2, 's'},
                                                          {0x25BC, 't'},
                                                          {0x25C6, 'u'},
                                                          {0x25D7, 'w'}});

}  // namespace

FieldFrame::FieldFrame(const Annotation& widget, bool isRound)
    : m_dashes(widget.borderDashes()), m_width(widget.borderWidth()), m_edge(m_width), m_isRound(isRound) {
    int degrees = 0;
    QPDFObjectHandle look = widget.entry("/MK");
    if (look.isDictionary()) {
        m_background = numbersOf(look.getKey("/BG"));
        m_border = numbersOf(look.getKey("/BC"));
        degrees = rotationOf(look.getKey("/R"));
    }
    QPDFObjectHandle style = widget.entry("/BS");
    if (style.isDictionary() && style.getKey("/S").isName())
        m_style = style.getKey("/S").getName();
    if (isRaised())
        m_edge *= 2;
    const Rect& rect = widget.rect();
    if (m_border.empty()) {
        m_width = 0;
        m_edge = std::min(m_edge, std::min(rect.width, rect.height) / 6);
    }
    m_box = degrees % 180 == 0 ? Rect{0, 0, rect.width, rect.height} : Rect{0, 0, rect.height, rect.width};
    m_toPage = turnedInto(rect, degrees);
}

Rect FieldFrame::content() const {
    const double drawn = m_width > 0 ? m_edge : 0;
    return {m_box.x + 2 * m_edge, m_box.y + drawn, m_box.width - 4 * m_edge, m_box.height - 2 * drawn};
}

Rect FieldFrame::lines() const {
    const Rect line = content();
    return {line.x, line.y, line.width, m_box.maxY() - 2 * m_edge - line.y};
}

void FieldFrame::draw(FormBuilder& drawing) const {
    drawing.add("q");
    if (drawing.setFillColor(m_background)) {
        if (m_isRound)
            drawing.ellipse(m_box);
        else
            drawing.rectangle(m_box);
        drawing.paintPath(true, false);
    }
    if (m_width > 0 && drawing.setStrokeColor(m_border)) {
        const Rect line = m_box.insetBy(m_width / 2);
        drawing.setLine(m_width, m_dashes);
        if (m_style == "/U")
            drawing.polyline({{line.minX(), line.minY()}, {line.maxX(), line.minY()}});
        else if (m_isRound)
            drawing.ellipse(line);
        else
            drawing.rectangle(line);
        drawing.paintPath(false, true);
        if (!m_isRound && isRaised())
            drawRaisedEdges(drawing);
    }
    drawing.add("Q");
}

/// With light from the upper left.
void FieldFrame::drawRaisedEdges(FormBuilder& drawing) const {
    const Rect outer = inner();
    const Rect inside = outer.insetBy(m_width);
    const bool isInset = m_style == "/I";
    drawing.add(isInset ? "0.5 g" : "1 g");
    drawing.polyline({{outer.minX(), outer.minY()},
                      {outer.minX(), outer.maxY()},
                      {outer.maxX(), outer.maxY()},
                      {inside.maxX(), inside.maxY()},
                      {inside.minX(), inside.maxY()},
                      {inside.minX(), inside.minY()}});
    drawing.paintPath(true, false);
    drawing.add(isInset ? "0.75 g" : "0.5 g");
    drawing.polyline({{outer.maxX(), outer.maxY()},
                      {outer.maxX(), outer.minY()},
                      {outer.minX(), outer.minY()},
                      {inside.minX(), inside.minY()},
                      {inside.maxX(), inside.minY()},
                      {inside.maxX(), inside.maxY()}});
    drawing.paintPath(true, false);
}

char signFor(QChar caption, char usual) {
    const char16_t character = caption.unicode();
    if (character > ' ' && character < 0x7F)
        return static_cast<char>(character);
    if (character > 0x2700 && character < 0x275F)
        return static_cast<char>('!' + (character - 0x2701));
    const auto known = std::find_if(signsElsewhere.begin(), signsElsewhere.end(),
                                    [&](const NamedSign& named) { return named.character == character; });
    return known != signsElsewhere.end() ? known->sign : usual;
}

void drawMark(FormBuilder& drawing, char sign, const Rect& box, const TextStyle& style) {
    const auto known =
        std::find_if(marks.begin(), marks.end(), [&](const Mark& m) { return m.sign == sign; });
    const double width = standardWidth(StandardFace::dingbats, static_cast<unsigned char>(sign), 0) / 1000;
    const Mark mark = known != marks.end() ? *known : Mark{sign, width, 0.35};
    const double size = style.fontSize > 0 ? style.fontSize : std::min(box.height, box.width) * 0.9;
    drawing.addFont("/ZaDb", standardFont("/ZapfDingbats"));
    drawing.add("BT");
    drawing.add(style.color.empty() ? "0 g" : style.color);
    drawing.add("/ZaDb " + pdfNumber(size) + " Tf");
    drawing.add({1, 0, 0, 1, box.midX() - mark.width * size / 2, box.midY() - mark.middle * size}, "Tm");
    drawing.add(QPDFObjectHandle::newString(std::string(1, sign)).unparse() + " Tj");
    drawing.add("ET");
}

}  // namespace vellmora
