#pragma once

#include <QByteArray>
#include <QImage>

namespace vellmora {

/// Draws a part of the one page of a drawing onto `target`, which is as large as the part, on white. The
/// whole page is `pageSize` pixels large. False where it cannot be drawn.
bool renderPage(const QByteArray& drawing, QSize pageSize, const QRect& part, QImage& target);

}  // namespace vellmora
