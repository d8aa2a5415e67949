#pragma once

#include "base/Matrix.h"

namespace vellmora {

/// Where a page lies in a view: the one mapping between page space and view space (points, both with y
/// upwards).
///
/// The page's area in the view begins and ends on device pixels, so that a picture of the page rendered at
/// `pixelSize()` covers it pixel for pixel and anything mapped with it meets the page exactly.
class PageGeometry {
public:
    struct View {
        Size size;                    ///< of the view, in view points
        double devicePixelRatio = 1;  ///< pixels for each view point
    };

    /// View points for each page point at which `shownBox` fits the view with `margin` view points around it.
    static double fittingScale(const Rect& shownBox, Size viewSize, double margin);

    /// `shownBox` in page space. `offset` moves the page from the centre of the view, in view points.
    PageGeometry(const Rect& shownBox, const View& view, double scale, Point offset = {});

    /// The page's area in the view.
    const Rect& frame() const { return m_frame; }
    QSize pixelSize() const { return m_pixelSize; }
    /// View points for each point of the page, across and up. They differ from the scale, and a little from
    /// each other, since the page's area ends on pixels.
    Size pointSize() const { return {m_toView.m11, m_toView.m22}; }

    Rect toView(const Rect& pageRect) const { return mapRect(m_toView, pageRect); }
    Rect toPage(const Rect& viewRect) const { return mapRect(m_toPage, viewRect); }

private:
    Rect m_frame;
    QSize m_pixelSize;
    Matrix m_toView;
    Matrix m_toPage;
};

}  // namespace vellmora
