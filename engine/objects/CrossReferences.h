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

/// The places of objects that are numbered from 1 on, in the seven bytes that a file's end has of each.
class PlaceTable {
public:
    /// Of an object of the first generation, in an object stream of at most 256.
    void set(int number, const ObjectPlace& place);
    /// The end of the file as above. All numbers up to the greatest have their places, and its own is the
    /// next.
    std::string end(const Trailer& trailer, size_t position) &&;

private:
    std::string m_entries;
};

}  // namespace vellmora
