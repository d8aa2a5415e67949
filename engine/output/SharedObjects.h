#pragma once

#include "engine/file/PlainWords.h"
#include "engine/objects/Qpdf.h"
#include "engine/output/StoredStreams.h"

#include <optional>

namespace vellmora {

/// Whether an object is of the kinds that pages share, and that nobody looks into once they are copied:
/// fonts, pictures, layers and the like. A form is not among them where its copy may be given what it lacks.
bool isSharedByPages(QPDFObjectHandle object);

/// How an object of a plain file is written, but for its words.
struct PlainKind {
    std::optional<StoredBytes> data;  ///< of a stream
    Packing packing = Packing::asTheyAre;
    bool isForm = false;
    bool isShared = false;  ///< by pages, as above
};

/// Adds the words of an object, of a stream those that `addPlainWords` has. Throws `NotPlain` where it cannot
/// be written as it stands there.
PlainKind addPlainObject(PlainWords& words, int number, const PlainFile& file);

/// An object that pages share, in words that stay as they are whatever happens to other objects.
struct PlainSharedObject {
    PlainWords words;
    std::optional<StoredBytes> data;  ///< of a stream
};

/// Nothing for other objects.
std::optional<PlainSharedObject> plainSharedObject(int number, const PlainFile& file);

}  // namespace vellmora
