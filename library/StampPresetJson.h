#pragma once

#include "library/StampPreset.h"

#include <optional>

#include <QByteArray>
#include <QList>

namespace vellmora {

/// A JSON array of presets in the order given: indented, keys sorted, dates in whole seconds of UTC,
/// identifiers in upper case; keys of absent values are left out.
QByteArray encodePresets(const QList<StampPreset>& presets);

/// The presets in the text, or nothing where any of it is wrong: the text is no JSON array, a required key is
/// missing, a value has the wrong type, an identifier is not in canonical form, or a date has no zone or a
/// fraction of a second. Unknown keys are ignored. Null counts as absent where a value is optional. A name
/// of more than a thousand characters is cut off.
std::optional<QList<StampPreset>> decodePresets(const QByteArray& json);

}  // namespace vellmora
