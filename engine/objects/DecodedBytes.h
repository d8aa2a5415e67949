#pragma once

#include "engine/objects/Qpdf.h"

#include <optional>
#include <string>

namespace vellmora {

/// For a look at a stream: its decoded bytes. Nothing where it cannot be decoded, or where it holds more than
/// `limit` bytes; no more than that is ever unpacked. For streams of a source: of one that gets its bytes
/// from elsewhere, libqpdf takes what was unpacked before the limit for all that there is.
std::optional<std::string> decodedBytes(QPDFObjectHandle stream, size_t limit);

/// As many of its first decoded bytes as there are, at most `count`. All are unpacked, but no more than that
/// kept. Throws libqpdf's exceptions.
std::string leadingBytes(QPDFObjectHandle stream, size_t count);

}  // namespace vellmora
