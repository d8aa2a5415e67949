#pragma once

#include "base/Rect.h"

#include <QString>

namespace vellmora {

struct TextLine {
    QString text;
    bool isRightToLeft = false;  ///< the direction of the paragraph that it belongs to
};

/// Writes text into a drawing with one font, or what stands in for it.
class TextWriter {
public:
    TextWriter() = default;
    TextWriter(const TextWriter&) = delete;
    TextWriter& operator=(const TextWriter&) = delete;
    virtual ~TextWriter() = default;

    /// Of a text in one line, in thousandths of an em.
    virtual double width(const QString& text) const = 0;
    /// To be called once in each text object, with the size in points.
    virtual void begin(double size) = 0;
    /// Shows a line with the left end of its baseline at this point, in the size of `begin`.
    virtual void show(const TextLine& line, Point at) = 0;
    /// Whether its letters may be wider than those that the file asks for.
    virtual bool isSubstitute() const { return false; }
};

}  // namespace vellmora
