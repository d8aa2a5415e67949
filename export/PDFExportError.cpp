#include "export/PDFExportError.h"

namespace vellmora {

PDFExportError::PDFExportError(Case which, const QString& reason)
    : Error(vellmoraDomain, static_cast<int>(which),
            reason.isEmpty() ? errorDescription(which) : errorDescription(which) + QLatin1Char(' ') + reason),
      m_case(which) {}

QString PDFExportError::errorDescription(Case which) {
    switch (which) {
        case Case::couldNotCreateConsumer:
            return QStringLiteral("PDF-Datei konnte nicht erstellt werden.");
        case Case::couldNotCreateContext:
            return QStringLiteral("PDF-Kontext konnte nicht erstellt werden.");
    }
    return {};
}

}  // namespace vellmora
