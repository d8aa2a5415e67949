#pragma once

#include "base/SystemFonts.h"

#include <optional>

#include <QColor>
#include <QImage>

namespace vellmora {

/// Draws an office stamp, 1180 pixels wide: a large title in a tinted frame on transparent ground. Where
/// there is a subtitle, even an empty one, the picture is taller, with the subtitle beneath the title. All
/// pixels have the same colour and differ only in their opacity, so the image has one byte for each pixel.
QImage makeBuiltinStampImage(const SystemFonts& fonts, const QString& title,
                             const std::optional<QString>& subtitle, const QColor& tint);

}  // namespace vellmora
