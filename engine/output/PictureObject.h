#pragma once

#include "engine/output/FileWriter.h"
#include "picture/PictureEncoding.h"

namespace vellmora {

/// Writes an image XObject with the picture's pixels under the number, which was reserved, and its straight
/// alpha as a soft mask where a pixel is transparent.
void writePicture(FileWriter& file, int number, const EncodedPicture& picture);

}  // namespace vellmora
