#pragma once

#include <QByteArray>
#include <QImage>

namespace vellmora {

/// Draws the one page of a drawing onto `target`, stretched to its size, on white. False where it cannot be
/// drawn.
bool renderPage(const QByteArray& drawing, QImage& target);

}  // namespace vellmora
