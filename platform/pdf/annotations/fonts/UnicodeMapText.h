#pragma once

#include <string>
#include <vector>

#include <QString>

namespace vellmora {

/// The character map (/ToUnicode) of a font whose codes of two bytes, from 0 on, mean these texts. Codes
/// without a text are left out.
std::string unicodeMapText(const std::vector<QString>& texts);

/// A code or a unit of text as four hexadecimal digits.
std::string hexadecimal(unsigned value);

}  // namespace vellmora
