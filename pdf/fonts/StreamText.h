#pragma once

#include "pdf/objects/Qpdf.h"

#include <functional>
#include <optional>
#include <string>

#include <qpdf/QPDFTokenizer.hh>

namespace vellmora {

/// For a look at a stream: its decoded bytes. Nothing where it cannot be decoded, or where it holds more than
/// `limit` bytes; no more than that is ever unpacked.
std::optional<std::string> decodedBytes(QPDFObjectHandle stream, size_t limit);

/// The tokens of a content stream or character map in their order. False from `visit` ends it.
void readTokens(const std::string& content, const std::function<bool(const QPDFTokenizer::Token&)>& visit);

}  // namespace vellmora
