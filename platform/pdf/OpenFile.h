#pragma once

#include "platform/pdf/Qpdf.h"

#include <QByteArray>

namespace vellmora {

/// Reads the structure of the file, which must outlive `file`. Nothing is printed. Throws the library's
/// exceptions where the cross-reference table or the catalog are damaged, or a password is needed; what lies
/// behind them is read as well as its damage allows.
void openFile(QPDF& file, const QByteArray& bytes);

}  // namespace vellmora
