#pragma once

#include "pdf/PDFDocument.h"

#include <QByteArray>

namespace vellmora {

/// A small PDF of one page, drawn by the very code that writes an output file: what is rendered from it is
/// what will be saved. It shows the page's crop box. Empty where the page cannot be drawn, or is not wanted
/// any more; `progress` may be null.
QByteArray makePagePdf(const PDFDocument& document, qsizetype pageIndex, WorkProgress* progress = nullptr);

}  // namespace vellmora
