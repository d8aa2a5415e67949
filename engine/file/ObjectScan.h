#pragma once

#include "engine/objects/ObjectPlaces.h"

#include <cstddef>
#include <optional>
#include <set>
#include <string_view>
#include <vector>

namespace vellmora {

/// All that stands in the file as "number generation obj", without help from a cross-reference table. What
/// looks like it inside of a stream does not count. Of several objects with one number the last one is valid.
ObjectPlaces scanForObjects(std::string_view file);

/// The position of an object's value where the object with this number stands at `position`, else nothing.
std::optional<size_t> valuePosition(std::string_view file, size_t position, int number);

/// The numbers in all that stands in the file as "number generation R", also inside of streams.
std::set<int> scanForReferences(std::string_view file);

/// Positions behind each keyword "trailer".
std::vector<size_t> scanForTrailers(std::string_view file);

}  // namespace vellmora
