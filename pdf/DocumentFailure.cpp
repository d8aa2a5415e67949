#include "pdf/DocumentFailure.h"

namespace vellmora {

static QString textOf(DocumentFailure failure) {
    switch (failure) {
        case DocumentFailure::empty:
            return QStringLiteral("Die Datei ist leer.");
        case DocumentFailure::needsPassword:
            return QStringLiteral("Die Datei ist mit einem Kennwort geschützt.");
        case DocumentFailure::unknownEncryption:
            return QStringLiteral("Die Datei ist auf eine unbekannte Art verschlüsselt.");
        case DocumentFailure::noPdf:
            return QStringLiteral("Die Datei ist kein PDF.");
        case DocumentFailure::tooDamaged:
            return QStringLiteral("Die Datei ist zu stark beschädigt.");
        case DocumentFailure::unreadable:
            return QStringLiteral("Die Datei konnte nicht gelesen werden.");
        case DocumentFailure::changed:
            return QStringLiteral(
                "Die Datei wurde geändert, während sie gelesen wurde. Bitte erneut öffnen.");
        case DocumentFailure::outOfMemory:
            return QStringLiteral("Das Dokument braucht zu viel Arbeitsspeicher.");
        case DocumentFailure::notStarted:
            return QStringLiteral("Der Prozess, der PDF-Dateien liest, konnte nicht gestartet werden.");
        case DocumentFailure::ended:
        case DocumentFailure::unsound:
            return QStringLiteral("Der Prozess, der das Dokument liest, ist abgebrochen.");
        case DocumentFailure::silent:
        case DocumentFailure::timeIsOver:
            return QStringLiteral("Das Dokument braucht zu viel Zeit.");
        case DocumentFailure::tooLarge:
            return QStringLiteral("Die neue Datei würde zu groß.");
        case DocumentFailure::notProduced:
            return QStringLiteral("Die PDF-Daten konnten nicht erzeugt werden.");
    }
    return {};
}

Error documentError(DocumentFailure failure) {
    return Error(Error::pdfDomain, static_cast<int>(failure), textOf(failure));
}

}  // namespace vellmora
