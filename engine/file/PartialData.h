#pragma once

#include "engine/objects/Qpdf.h"

namespace vellmora {

/// Delivers a stream of a source file with its filters taken off, also one that is damaged or has odd
/// parameters: as far as other readers get. False where they may get further. The pipeline is not finished.
bool pipeAsFarAsPossible(QPDFObjectHandle stream, Pipeline& target);

}  // namespace vellmora
