#pragma once

#include "platform/image/Image.h"
#include "platform/pdf/picture/EncodedPicture.h"

namespace vellmora {

/// The picture's pixels in sRGB or grey without any loss, in the fewest bits that hold them.
EncodedPicture encodePicture(const Image& image);

}  // namespace vellmora
