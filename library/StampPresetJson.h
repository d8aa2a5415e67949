#pragma once

#include "library/StampPreset.h"

#include <optional>

#include <QByteArray>
#include <QList>

namespace vellmora {

/// A JSON array of presets in the order given: indented, keys sorted, dates in whole seconds of UTC,
/// identifiers in upper case; keys of absent values are left out.
QByteArray encodePresets(const QList<StampPreset>& presets);

/// Strict: nothing where the text is no JSON array, or any entry lacks a required key, holds a value of the
/// wrong type, an identifier that is not in canonical form, or a date without a zone or with a fraction of a
/// second. Unknown keys are ignored; null counts as absent where a value is optional.
std::optional<QList<StampPreset>> decodePresets(const QByteArray& json);

}  // namespace vellmora
