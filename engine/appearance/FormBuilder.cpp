#include "engine/appearance/FormBuilder.h"

#include "engine/objects/ContentText.h"
#include "engine/objects/PDFValues.h"

namespace vellmora {

void FormBuilder::addNumbers(std::span<const double> numbers) {
    for (const double number : numbers)
        m_content += pdfNumber(number) + ' ';
}

void FormBuilder::add(std::initializer_list<double> operands, const char* operation) {
    addNumbers({operands.begin(), operands.size()});
    m_content += operation;
    m_content += '\n';
}

bool FormBuilder::setColor(const std::vector<double>& components, const ColorOperators& operators) {
    const char* operation = nullptr;
    switch (components.size()) {
        case 1:
            operation = operators.gray;
            break;
        case 3:
            operation = operators.rgb;
            break;
        case 4:
            operation = operators.cmyk;
            break;
        default:
            return false;
    }
    addNumbers(components);
    add({}, operation);
    return true;
}

bool FormBuilder::setFillColor(const std::vector<double>& components) {
    return setColor(components, {"g", "rg", "k"});
}

bool FormBuilder::setStrokeColor(const std::vector<double>& components) {
    return setColor(components, {"G", "RG", "K"});
}

void FormBuilder::setLine(double width, const std::vector<double>& dashes) {
    add({width}, "w");
    if (dashes.empty())
        return;
    m_content += "[ ";
    addNumbers(dashes);
    m_content += "] 0 d\n";
}

void FormBuilder::setBlending(double opacity, const char* blendMode) {
    const std::string mode = std::string("/") + blendMode;
    if (opacity >= 1 && mode == "/Normal")
        return;
    m_blending = QPDFObjectHandle::newDictionary();
    m_blending.replaceKey("/CA", QPDFObjectHandle::newReal(opacity, 4));
    m_blending.replaceKey("/ca", QPDFObjectHandle::newReal(opacity, 4));
    m_blending.replaceKey("/BM", QPDFObjectHandle::newName(mode));
}

void FormBuilder::ellipse(const Rect& rect) {
    constexpr double arc = 0.5522847498;  // control points of a quarter circle: 4 (√2 − 1) / 3
    const double dx = rect.width / 2 * arc;
    const double dy = rect.height / 2 * arc;
    const double x = rect.midX();
    const double y = rect.midY();
    moveTo({rect.maxX(), y});
    curveTo({rect.maxX(), y + dy}, {x + dx, rect.maxY()}, {x, rect.maxY()});
    curveTo({x - dx, rect.maxY()}, {rect.minX(), y + dy}, {rect.minX(), y});
    curveTo({rect.minX(), y - dy}, {x - dx, rect.minY()}, {x, rect.minY()});
    curveTo({x + dx, rect.minY()}, {rect.maxX(), y - dy}, {rect.maxX(), y});
    closePath();
}

void FormBuilder::polyline(const std::vector<Point>& points) {
    for (size_t i = 0; i < points.size(); ++i) {
        if (i == 0)
            moveTo(points[i]);
        else
            lineTo(points[i]);
    }
}

void FormBuilder::paintPath(bool fill, bool stroke) {
    if (fill)
        add({}, stroke ? "B" : "f");
    else
        add({}, stroke ? "S" : "n");
}

void FormBuilder::addFont(const std::string& name, const QPDFObjectHandle& font) {
    m_fonts.replaceKey(name, font);
}

QPDFObjectHandle FormBuilder::form(const std::string& content, const Rect& box) {
    QPDFObjectHandle form = m_output.newStream(content);
    QPDFObjectHandle dictionary = form.getDict();
    dictionary.replaceKey("/Type", QPDFObjectHandle::newName("/XObject"));
    dictionary.replaceKey("/Subtype", QPDFObjectHandle::newName("/Form"));
    dictionary.replaceKey("/BBox", arrayOf(box));
    dictionary.replaceKey("/Resources", QPDFObjectHandle::newDictionary());
    return form;
}

QPDFObjectHandle FormBuilder::finish(const Rect& box, const Matrix& matrix) {
    QPDFObjectHandle drawing = form(m_content, box);
    drawing.getDict().getKey("/Resources").replaceKey("/Font", m_fonts);
    if (!m_blending.isNull())
        drawing = blended(drawing, box);
    if (!matrix.isIdentity())
        drawing.getDict().replaceKey("/Matrix", arrayOf(matrix));
    return drawing;
}

QPDFObjectHandle FormBuilder::blended(const QPDFObjectHandle& drawing, const Rect& box) {
    QPDFObjectHandle group = QPDFObjectHandle::newDictionary();
    group.replaceKey("/S", QPDFObjectHandle::newName("/Transparency"));
    QPDFObjectHandle(drawing).getDict().replaceKey("/Group", group);
    QPDFObjectHandle states = QPDFObjectHandle::newDictionary();
    states.replaceKey("/G0", m_blending);
    QPDFObjectHandle objects = QPDFObjectHandle::newDictionary();
    objects.replaceKey("/D0", drawing);
    QPDFObjectHandle whole = form("/G0 gs /D0 Do", box);
    QPDFObjectHandle resources = whole.getDict().getKey("/Resources");
    resources.replaceKey("/ExtGState", states);
    resources.replaceKey("/XObject", objects);
    return whole;
}

}  // namespace vellmora
