#pragma once

#include "engine/appearance/ObjectCache.h"
#include "engine/fonts/FontReader.h"

#include <optional>

#include <QString>

namespace vellmora {

/// Reads what appearances show.
class ShownText {
public:
    /// The strings that a form XObject shows, one after another as the file has them. `resources` hold for
    /// what the form's own do not have. Nothing where that cannot be told reliably: for an unknown encoding,
    /// pictures of text, a very large form.
    std::optional<QString> of(const QPDFObjectHandle& form, const QPDFObjectHandle& resources);

private:
    ObjectCache<FontReader> m_fonts;
    ObjectCache<std::optional<QString>> m_texts;
};

}  // namespace vellmora
