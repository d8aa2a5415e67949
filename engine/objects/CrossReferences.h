#pragma once

#include "engine/objects/ObjectPlaces.h"

#include <string>
#include <vector>

namespace vellmora {

/// What a reader needs of a trailer, as PDF text; empty for an entry that there is not.
struct Trailer {
    std::string root;
    std::string encrypt;
    std::string id;
};

/// The end of a file: a cross-reference stream (ISO 32000-2, 7.5.8) that names the places of all objects, and
/// its own position `position`. No object may refer to its number, which is greater than all others.
std::string crossReferences(ObjectPlaces places, const Trailer& trailer, size_t position, int ownNumber);

/// The same for objects that are numbered from 1 on without a gap; its own number is the next.
std::string crossReferences(const std::vector<ObjectPlace>& places, const Trailer& trailer, size_t position);

}  // namespace vellmora
