#pragma once

#include "base/Rect.h"

namespace vellmora {

enum class DisplayBox { mediaBox, cropBox };

/// One page of a document as its reader sees it: upright, whatever rotation the file states.
///
/// Page space is measured in points (in the page's own user unit, where the file states one), with y upwards.
/// For a page without rotation it is the page's own space; the space of a turned page is the upright one, in
/// which its media box keeps its lower-left corner and trades width for height where need be.
class PDFPage {
public:
    PDFPage(const Rect& mediaBox, const Rect& cropBox) : m_mediaBox(mediaBox), m_cropBox(cropBox) {}

    /// In page space. The crop box lies inside the media box.
    const Rect& bounds(DisplayBox box) const { return box == DisplayBox::mediaBox ? m_mediaBox : m_cropBox; }

    bool operator==(const PDFPage&) const = default;

private:
    Rect m_mediaBox;
    Rect m_cropBox;
};

}  // namespace vellmora
