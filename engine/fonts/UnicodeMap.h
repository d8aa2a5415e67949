#pragma once

#include "engine/objects/Qpdf.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include <QString>

namespace vellmora {

/// The character map (/ToUnicode) of a font whose codes of two bytes, from 0 on, mean these texts. Codes
/// without a text are left out.
std::string unicodeMapText(const std::vector<QString>& texts);

/// A code or a unit of text as four hexadecimal digits.
std::string hexadecimal(unsigned value);

/// A font's own account of what its codes mean (/ToUnicode).
class UnicodeMap {
public:
    UnicodeMap() = default;
    /// Empty where the stream cannot be read.
    explicit UnicodeMap(const QPDFObjectHandle& stream);

    bool isEmpty() const { return m_ranges.empty(); }
    /// Nothing for a code that it does not name.
    std::optional<QString> text(uint32_t code) const;

private:
    struct Range {
        uint32_t last = 0;
        QString text;               ///< of the first code; its last unit counts up
        std::vector<QString> list;  ///< or one text for each code
    };
    class Reader;

    std::map<uint32_t, Range> m_ranges;  ///< by the first code
};

}  // namespace vellmora
