#include "platform/fonts/FontConfiguration.h"

#include <fontconfig/fontconfig.h>

namespace vellmora {

std::future<void> readFontConfiguration() {
    return std::async(std::launch::async, [] { FcInit(); });
}

}  // namespace vellmora
