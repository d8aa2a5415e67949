#pragma once

#include "pdf/DocumentFailure.h"

namespace vellmora {

class SnapshotReader;

/// Why this content could not be opened as a document, as far as it can be told: no PDF, damaged, a password
/// is needed. Throws the `Error` of content that could not be read.
DocumentFailure openFailure(const SnapshotReader& content);

}  // namespace vellmora
