#include "platform/fonts/FontConfiguration.h"

#include <fontconfig/fontconfig.h>

namespace vellmora {

std::future<void> readFontConfiguration() {
    // Where no thread is to be had, it is read by who waits for it.
    return std::async(std::launch::async | std::launch::deferred, [] { FcInit(); });
}

}  // namespace vellmora
