#pragma once

#include "engine/objects/PDFValues.h"

#include <string>
#include <vector>

namespace vellmora {

/// One annotation of a page and what its dictionary says. All lengths in points of the file's own page space.
class Annotation {
public:
    explicit Annotation(const QPDFObjectHandle& dictionary);

    bool is(const char* subtype) const { return m_subtype == subtype; }
    /// By its flags and its kind; links and pop-ups are not painted.
    bool isVisible() const;
    /// Stays upright on a page that is turned, about its upper left corner.
    bool isUpright() const;
    const QPDFObjectHandle& dictionary() const { return m_dictionary; }
    QPDFObjectHandle entry(const char* key) const { return QPDFObjectHandle(m_dictionary).getKey(key); }

    /// Where it lies; empty where the file has no such rectangle.
    const Rect& rect() const { return m_rect; }
    /// Grey, RGB or CMYK; none where it has none.
    std::vector<double> color(const char* key) const { return numbersOf(entry(key)); }
    /// 0 … 1.
    double opacity() const;
    double borderWidth() const;
    /// Empty for a solid line.
    std::vector<double> borderDashes() const;

private:
    QPDFObjectHandle borderStyle() const { return entry("/BS"); }

    QPDFObjectHandle m_dictionary;
    std::string m_subtype;
    Rect m_rect;
    long long m_flags = 0;
};

}  // namespace vellmora
