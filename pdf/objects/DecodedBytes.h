#pragma once

#include "pdf/objects/Qpdf.h"

#include <optional>
#include <string>

namespace vellmora {

/// For a look at a stream: its decoded bytes. Nothing where it cannot be decoded, or where it holds more than
/// `limit` bytes; no more than that is ever unpacked.
std::optional<std::string> decodedBytes(QPDFObjectHandle stream, size_t limit);

/// As many of its first decoded bytes as there are, at most `count`; no more than that is unpacked.
std::string leadingBytes(QPDFObjectHandle stream, size_t count);

}  // namespace vellmora
