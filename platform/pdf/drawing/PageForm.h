#pragma once

#include "platform/pdf/drawing/BoxArrays.h"
#include "platform/pdf/reading/PDFSource.h"
#include "platform/pdf/writing/ObjectCopier.h"

#include <functional>

namespace vellmora {

/// The content of a page as one form XObject of the output. As a form it cannot disturb what is drawn after
/// it, even where its operators are not balanced. One content stream passes through as it is, still
/// compressed and byte for byte, also where it is damaged; several are joined.
/// `onIncomplete` is called, when the output is written, where some of it cannot be decoded for that.
QPDFObjectHandle makePageForm(ObjectCopier& copier, BoxArrays& boxes, const SourcePage& page,
                              std::function<void()> onIncomplete);

}  // namespace vellmora
