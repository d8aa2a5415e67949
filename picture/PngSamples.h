#pragma once

#include "picture/PictureEncoding.h"

#include <optional>

#include <QByteArray>

namespace vellmora {

/// The samples of a PNG as they stand in it, neither unpacked nor packed again: a PDF reader undoes the same
/// compression and filters. Nothing for a PNG that has no such form (interlaced, 16 bits, transparent) or
/// whose samples are not whole.
std::optional<EncodedSamples> samplesOfPng(const QByteArray& png);

}  // namespace vellmora
