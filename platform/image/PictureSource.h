#pragma once

#include "platform/image/Image.h"

#include <functional>
#include <optional>

#include <QString>

namespace vellmora {

/// A picture that may be decoded later and on any thread.
struct PictureSource {
    /// Names the file and its version: equal versions hold the same picture. Empty where there is no file.
    QString version;
    /// Nothing where the picture is missing or cannot be decoded.
    std::function<std::optional<Image>()> load;
};

}  // namespace vellmora
