#pragma once

#include "engine/appearance/Annotation.h"
#include "engine/appearance/FormBuilder.h"
#include "engine/appearance/TextStyle.h"

#include <QChar>

namespace vellmora {

/// Border and background of a field. The field is drawn upright in a box of its own, with its lower left
/// corner at the origin, and turned into the widget's rectangle.
class FieldFrame {
public:
    FieldFrame(const Annotation& widget, bool isRound);

    const Rect& box() const { return m_box; }
    /// Inside of the border that is drawn.
    Rect inner() const { return m_box.insetBy(m_width); }
    /// Where a line of text is: at both sides as far from the border as that is wide. A border without a
    /// colour leaves the same room, but for very wide ones.
    Rect content() const;
    /// Where text of several lines is.
    Rect lines() const;
    /// Where the bars of a list are.
    Rect list() const { return m_box.insetBy(m_edge); }
    Matrix toPage() const { return m_toPage; }
    void draw(FormBuilder& drawing) const;

private:
    /// A bevelled or inset look.
    bool isRaised() const { return m_style == "/B" || m_style == "/I"; }
    void drawRaisedEdges(FormBuilder& drawing) const;

    Rect m_box;
    Matrix m_toPage;
    std::vector<double> m_background;
    std::vector<double> m_border;
    std::vector<double> m_dashes;
    std::string m_style;
    double m_width;  ///< of the border that is drawn
    double m_edge;   ///< of the room that text leaves to a border
    bool m_isRound;
};

/// The code of a button's caption in the font ZapfDingbats; `usual` where the font does not have it.
char signFor(QChar caption, char usual);

/// A sign of the font ZapfDingbats in the middle of the box, as large as it allows where the style has no
/// size.
void drawMark(FormBuilder& drawing, char sign, const Rect& box, const TextStyle& style);

}  // namespace vellmora
