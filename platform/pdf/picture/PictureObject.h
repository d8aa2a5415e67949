#pragma once

#include "platform/image/Image.h"
#include "platform/pdf/Qpdf.h"

namespace vellmora {

/// An image XObject of the output with the picture's pixels in sRGB or grey, and its straight alpha as a soft
/// mask where a pixel is transparent. The samples are compressed losslessly.
QPDFObjectHandle makePictureObject(QPDF& output, const Image& image);

}  // namespace vellmora
