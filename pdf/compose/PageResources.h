#pragma once

#include "pdf/file/ParsedFile.h"

#include <vector>

namespace vellmora {

/// The page's content streams in order.
std::vector<QPDFObjectHandle> contentStreamsOf(const ParsedPage& page);

/// The page's resources without the pictures, forms and fonts that only other pages use: some producers give
/// every page the resources of the whole document. Null where the page has none.
QPDFObjectHandle resourcesInUse(const ParsedPage& page);

}  // namespace vellmora
