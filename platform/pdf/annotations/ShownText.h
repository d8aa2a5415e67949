#pragma once

#include "platform/pdf/Qpdf.h"

#include <string>

namespace vellmora {

/// The strings that a form XObject shows, one after another as the file has them, without spaces and control
/// characters. Empty where the content cannot be read.
std::string shownText(const QPDFObjectHandle& form);

/// The same for a text that might be shown.
std::string withoutSpaces(const std::string& text);

}  // namespace vellmora
