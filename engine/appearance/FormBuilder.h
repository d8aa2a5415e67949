#pragma once

#include "base/Matrix.h"
#include "engine/objects/Qpdf.h"

#include <initializer_list>
#include <span>
#include <string>
#include <vector>

namespace vellmora {

/// Puts together a form XObject of the output: content operators, and the resources that they name.
class FormBuilder {
public:
    explicit FormBuilder(QPDF& output) : m_output(output) {}

    /// Operands and operator as they stand in a content stream.
    void add(std::initializer_list<double> operands, const char* operation);
    void add(const std::string& content) { m_content += content + '\n'; }

    /// 1 component is grey, 3 are RGB, 4 CMYK. False (nothing is set) for any other number.
    bool setFillColor(const std::vector<double>& components);
    bool setStrokeColor(const std::vector<double>& components);
    /// Both in points; without dashes the line is solid.
    void setLine(double width, const std::vector<double>& dashes);
    /// Of the drawing as a whole: where a line lies on an area, the two do not add up.
    void setBlending(double opacity, const char* blendMode);

    void moveTo(Point p) { add({p.x, p.y}, "m"); }
    void lineTo(Point p) { add({p.x, p.y}, "l"); }
    void curveTo(Point a, Point b, Point p) { add({a.x, a.y, b.x, b.y, p.x, p.y}, "c"); }
    void rectangle(const Rect& rect) { add({rect.x, rect.y, rect.width, rect.height}, "re"); }
    void ellipse(const Rect& rect);
    void polyline(const std::vector<Point>& points);
    void closePath() { add({}, "h"); }
    void paintPath(bool fill, bool stroke);

    /// The font under this name of the form's resources.
    void addFont(const std::string& name, const QPDFObjectHandle& font);

    QPDFObjectHandle finish(const Rect& box, const Matrix& matrix = {});

private:
    struct ColorOperators {
        const char* gray;
        const char* rgb;
        const char* cmyk;
    };
    bool setColor(const std::vector<double>& components, const ColorOperators& operators);
    void addNumbers(std::span<const double> numbers);
    QPDFObjectHandle form(const std::string& content, const Rect& box);
    /// A form that paints the drawing as one.
    QPDFObjectHandle blended(const QPDFObjectHandle& drawing, const Rect& box);

    QPDF& m_output;
    std::string m_content;
    QPDFObjectHandle m_fonts = QPDFObjectHandle::newDictionary();
    QPDFObjectHandle m_blending = QPDFObjectHandle::newNull();  ///< a graphics state; null for none
};

}  // namespace vellmora
