#pragma once

#include <cstddef>
#include <map>
#include <string_view>
#include <vector>

namespace vellmora {

/// Where an object of a file is to be found.
struct ObjectPlace {
    size_t position = 0;  ///< in the file; a member of an object stream has that of the stream
    int container = 0;    ///< number of the object stream; 0 for an object of its own
    int detail = 0;       ///< the generation, or the index in the object stream
};

/// By object number.
using ObjectPlaces = std::map<int, ObjectPlace>;

/// All that stands in the file as "number generation obj", without help from a cross-reference table. What
/// looks like it inside of a stream does not count. Of several objects with one number the last one is valid.
ObjectPlaces scanForObjects(std::string_view file);

/// Positions behind each keyword "trailer".
std::vector<size_t> scanForTrailers(std::string_view file);

}  // namespace vellmora
