#pragma once

#include "base/Error.h"

namespace vellmora {

class FileSnapshot;

/// Why this content could not be opened as a document, as far as it can be told: no PDF, damaged, a password
/// is needed. Throws the `Error` of content that could not be read.
Error openFailure(const FileSnapshot& content);

}  // namespace vellmora
