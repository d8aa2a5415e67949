#pragma once

#include "base/Error.h"

#include <cstdint>

namespace vellmora {

/// Why a document cannot be opened, or no file be made of it.
enum class DocumentFailure : std::uint32_t {
    empty,          ///< a file of no bytes
    needsPassword,  ///< and not the empty one
    unknownEncryption,
    noPdf,
    tooDamaged,
    unreadable,   ///< the file; there is an error number
    changed,      ///< the file, while it was read
    outOfMemory,  ///< within what a document may have
    notProduced,  ///< the new file's data
    // What the program sees of the process that reads the document:
    notStarted,
    ended,
    silent,      ///< said nothing for too long
    unsound,     ///< said what cannot be
    timeIsOver,  ///< for one page
    tooLarge,    ///< the new file
};
inline constexpr auto lastFailureOfDocument = DocumentFailure::notProduced;

/// The error with its German text.
Error documentError(DocumentFailure failure);

}  // namespace vellmora
