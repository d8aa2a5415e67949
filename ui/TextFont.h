#pragma once

#include <memory>
#include <optional>

#include <QFont>
#include <QList>
#include <QPainter>
#include <QPointF>
#include <QRawFont>
#include <QString>

namespace vellmora {

/// A font of the window, for texts on one line. Copies share what they know.
///
/// Characters of Latin, Greek and Cyrillic that the font has are laid out one beside the other, without
/// kerning and ligatures, which is all that nearly every text needs. Other texts are left to Qt's layout and
/// `font()`. Qt makes the engine of a `QFont` when it is first measured or painted with, and asks Fontconfig
/// for it, once for each size and weight: this is most of what a text costs while the window starts. So a
/// size that no other text needs has none.
class TextFont {
public:
    /// `font` has a size in pixels. `face` is of the same family and weight, of any size.
    TextFont(const QFont& font, const QRawFont& face);

    const QFont& font() const;
    /// Whole view points.
    int lineHeight() const;
    double width(const QString& line) const;
    /// With the painter's pen. A line that is wider than the box, or higher, is not cut.
    void paint(QPainter& painter, const QRectF& box, Qt::Alignment alignment, const QString& line) const;

private:
    struct Glyph {
        quint32 index;
        double advance;
    };
    struct Line {
        QList<quint32> glyphs;
        QList<QPointF> positions;
        double width = 0;
    };
    struct Shared;

    std::optional<Glyph> glyphOf(QChar character) const;
    /// Nothing where the line is for Qt's layout.
    std::optional<Line> laidOut(const QString& line) const;

    std::shared_ptr<Shared> m_shared;
};

}  // namespace vellmora
