#pragma once

#include "picture/SampleRows.h"

#include <string>

namespace vellmora {

struct CompressedRows {
    bool hasPredictor = false;
    std::string data;  ///< a zlib stream
};

/// Compresses rows without loss in the way that serves them best: with or without PNG filters, and looking
/// for repetitions (drawings) or for runs only (photographs, whose noise never repeats). Tries the ways on a
/// part of the rows. Takes several threads for large pictures.
CompressedRows compress(const SampleRows& rows);

}  // namespace vellmora
