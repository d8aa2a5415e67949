#pragma once

#include "library/StampPreset.h"

#include <QList>

namespace vellmora {

/// `presets` in the order in which `shown` has them, where all of them are there; else as they are.
///
/// A list is not sorted anew while the pointer rests on it. A second click on the same spot meets the entry
/// that the first one met.
QList<StampPreset> inShownOrder(const QList<StampPreset>& presets, const QList<StampPreset>& shown);

}  // namespace vellmora
