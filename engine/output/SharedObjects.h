#pragma once

#include "engine/file/PlainWords.h"
#include "engine/objects/Qpdf.h"
#include "engine/output/StoredStreams.h"

#include <optional>

namespace vellmora {

/// Whether an object is of the kinds that pages share, and that nobody looks into once they are copied:
/// fonts, pictures, layers and the like. A form is not among them where its copy may be given what it lacks.
bool isSharedByPages(QPDFObjectHandle object);

/// Such an object of a plain file.
struct PlainSharedObject {
    PlainWords words;                 ///< of a stream those of its dictionary
    std::optional<StoredBytes> data;  ///< of a stream
};

/// Nothing for other objects, and where the object cannot be written as it stands.
std::optional<PlainSharedObject> plainSharedObject(const PlainFile& file, int number);

}  // namespace vellmora
