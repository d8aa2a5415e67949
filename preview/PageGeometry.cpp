#include "preview/PageGeometry.h"

#include <algorithm>
#include <cmath>

namespace vellmora {

namespace {

constexpr double smallestScale = 0.001;

struct PixelSpan {
    int start = 0;
    int length = 0;
};

/// Device pixels that a page takes along one axis, from the view's upper left corner. `offset` in pixels.
PixelSpan pixelSpan(double viewLength, double pageLength, double offset) {
    const int length = std::max(1, static_cast<int>(std::lround(pageLength)));
    return {static_cast<int>(std::lround((viewLength - length) / 2 + offset)), length};
}

}  // namespace

double PageGeometry::fittingScale(const Rect& shownBox, Size viewSize, double margin) {
    const double horizontal = (viewSize.width - 2 * margin) / shownBox.width;
    const double vertical = (viewSize.height - 2 * margin) / shownBox.height;
    return std::max(std::min(horizontal, vertical), smallestScale);
}

PageGeometry::PageGeometry(const Rect& shownBox, const View& view, double scale, Point offset) {
    const double ratio = view.devicePixelRatio;
    const PixelSpan across =
        pixelSpan(view.size.width * ratio, shownBox.width * scale * ratio, offset.x * ratio);
    // Pixels are counted from the top, so an offset upwards is a negative one.
    const PixelSpan down =
        pixelSpan(view.size.height * ratio, shownBox.height * scale * ratio, -offset.y * ratio);
    m_pixelSize = QSize(across.length, down.length);
    const double top = view.size.height - down.start / ratio;
    m_frame = {across.start / ratio, top - down.length / ratio, across.length / ratio, down.length / ratio};
    const double sx = m_frame.width / shownBox.width;
    const double sy = m_frame.height / shownBox.height;
    m_toView = {sx, 0, 0, sy, m_frame.x - shownBox.x * sx, m_frame.y - shownBox.y * sy};
    m_toPage = {1 / sx, 0, 0, 1 / sy, shownBox.x - m_frame.x / sx, shownBox.y - m_frame.y / sy};
}

}  // namespace vellmora
