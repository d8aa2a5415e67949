#pragma once

#include "platform/fonts/SystemFonts.h"

#include <optional>

#include <QColor>
#include <QImage>

namespace vellmora {

/// Draws an office stamp: a tinted frame on transparent ground with a large title and, where there is a
/// subtitle (also an empty one), a taller picture with the title raised and the subtitle beneath. 1180 pixels
/// wide. One byte for each pixel, since all of them have the same colour and differ in their alpha alone.
QImage makeBuiltinStampImage(const SystemFonts& fonts, const QString& title,
                             const std::optional<QString>& subtitle, const QColor& tint);

}  // namespace vellmora
