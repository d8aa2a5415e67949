#pragma once

#include "engine/objects/Qpdf.h"
#include "picture/PictureEncoding.h"

namespace vellmora {

/// Makes a new stream of the output an image XObject with the picture's pixels, and its straight alpha as a
/// soft mask where a pixel is transparent.
void fillPictureObject(QPDF& output, const QPDFObjectHandle& stream, const EncodedPicture& picture);

}  // namespace vellmora
