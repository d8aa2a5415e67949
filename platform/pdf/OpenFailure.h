#pragma once

#include "platform/error/Error.h"

namespace vellmora {

class FileContent;

/// Why this content could not be opened as a document, as far as it can be told: no PDF, damaged, a password
/// is needed. Throws the `Error` of content that could not be read.
Error openFailure(const FileContent& content);

}  // namespace vellmora
