#pragma once

#include "base/Matrix.h"

namespace vellmora {

/// How a page of a file (its own space: the media box as the file states it) lies in page space (upright).
class PageOrientation {
public:
    /// `rotation` in degrees clockwise: 0, 90, 180 or 270.
    PageOrientation(const Rect& mediaBox, int rotation) : m_mediaBox(mediaBox), m_rotation(rotation) {}

    /// The file's own box.
    const Rect& mediaBox() const { return m_mediaBox; }
    int rotation() const { return m_rotation; }
    Rect uprightMediaBox() const;
    /// From the file's own space to page space; the identity for a page that is not turned.
    Matrix toPageSpace() const;
    Matrix fromPageSpace() const { return toPageSpace().inverted(); }

private:
    Rect m_mediaBox;
    int m_rotation;
};

}  // namespace vellmora
