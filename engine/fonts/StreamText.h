#pragma once

#include "engine/objects/Qpdf.h"

#include <functional>
#include <string>

#include <qpdf/QPDFTokenizer.hh>

namespace vellmora {

/// The tokens of a content stream or character map in their order. False from `visit` ends it.
void readTokens(const std::string& content, const std::function<bool(const QPDFTokenizer::Token&)>& visit);

}  // namespace vellmora
