#pragma once

#include <cstddef>
#include <map>

namespace vellmora {

/// Where an object of a file is to be found.
struct ObjectPlace {
    size_t position = 0;  ///< in the file; a member of an object stream has that of the stream
    int container = 0;    ///< number of the object stream; 0 for an object of its own
    int detail = 0;       ///< the generation, or the index in the object stream
};

/// Greater numbers are more than readers need to take (ISO 32000-1, annex C).
constexpr int greatestObjectNumber = 8388607;

inline bool isObjectNumber(int number) {
    return number >= 1 && number <= greatestObjectNumber;
}

/// By object number.
using ObjectPlaces = std::map<int, ObjectPlace>;

}  // namespace vellmora
