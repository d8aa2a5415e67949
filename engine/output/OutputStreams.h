#pragma once

#include "engine/objects/Qpdf.h"

#include <set>
#include <vector>

namespace vellmora {

/// Gets the copied streams of the output ready to be written, without touching what they hold.
///
/// Remarks that are not drawn (metadata, the producer's own data, ties to a structure tree) are removed.
/// What is legal or common but not understood by every reader is said plainly: filters behind references
/// become direct, and a colour profile that contradicts its number of components (some converters give grey
/// pictures an RGB profile) is replaced by the device's own colour space, as readers do who notice it.
/// Answers the profiles that were replaced.
std::set<QPDFObjGen> prepareStreams(QPDF& output, const std::vector<QPDFObjectHandle>& streams);

}  // namespace vellmora
