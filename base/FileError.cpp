#include "base/FileError.h"

#include <cerrno>

#include <QFileInfo>

namespace vellmora {

QString errnoText(int errorNumber) {
    switch (errorNumber) {
        case EACCES:
        case EPERM:
            return QStringLiteral("Die Berechtigung dafür fehlt.");
        case ENOENT:
            return QStringLiteral("Die Datei oder der Ordner ist nicht vorhanden.");
        case EEXIST:
            return QStringLiteral("Unter diesem Namen ist schon etwas vorhanden.");
        case ENOTDIR:
            return QStringLiteral("Ein Teil des Pfades ist kein Ordner.");
        case EISDIR:
            return QStringLiteral("Es handelt sich um einen Ordner.");
        case ENOTEMPTY:
            return QStringLiteral("Der Ordner ist nicht leer.");
        case ENOSPC:
            return QStringLiteral("Auf dem Datenträger ist kein Platz mehr frei.");
        case EDQUOT:
            return QStringLiteral("Das Speicherkontingent ist erschöpft.");
        case EFBIG:
            return QStringLiteral("Die Datei ist größer, als der Datenträger oder eine Vorgabe erlaubt.");
        case EROFS:
            return QStringLiteral("Der Datenträger ist schreibgeschützt.");
        case EIO:
            return QStringLiteral("Der Datenträger meldet einen Ein-/Ausgabefehler.");
        case ENAMETOOLONG:
            return QStringLiteral("Der Dateiname ist zu lang.");
        case ELOOP:
            return QStringLiteral("Die Verknüpfungen verweisen im Kreis aufeinander.");
        case EBUSY:
        case ETXTBSY:
            return QStringLiteral("Die Datei wird gerade von einem anderen Programm benutzt.");
        case EMFILE:
        case ENFILE:
            return QStringLiteral("Es sind zu viele Dateien geöffnet.");
        case ENOMEM:
            return QStringLiteral("Der Arbeitsspeicher reicht nicht aus.");
        case ESTALE:
        case ENODEV:
        case ENXIO:
            return QStringLiteral("Der Datenträger ist nicht mehr erreichbar.");
        case EINVAL:
            return QStringLiteral("Der Dateiname oder der Datenträger lässt das nicht zu.");
        default:
            return QStringLiteral("Systemfehler %1.").arg(errorNumber);
    }
}

static QString actionText(FileAction action) {
    switch (action) {
        case FileAction::read:
            return QStringLiteral("„%1“ konnte nicht gelesen werden. ");
        case FileAction::write:
            return QStringLiteral("„%1“ konnte nicht geschrieben werden. ");
        case FileAction::create:
            return QStringLiteral("„%1“ konnte nicht angelegt werden. ");
        case FileAction::remove:
            return QStringLiteral("„%1“ konnte nicht gelöscht werden. ");
        case FileAction::replace:
            return QStringLiteral("„%1“ konnte nicht ersetzt werden. ");
        case FileAction::createFolder:
            return QStringLiteral("Der Ordner „%1“ konnte nicht angelegt werden. ");
    }
    return {};
}

static Error makeError(FileAction action, const QString& path, int errorNumber, const QString& reason) {
    QString name = QFileInfo(path).fileName();
    if (name.isEmpty())
        name = path;
    // The name is put in last: it may itself hold a place marker.
    QString text = actionText(action) + reason;
    text.replace(QStringLiteral("%1"), name);
    return Error(Error::posixDomain, errorNumber, text, errnoText(errorNumber));
}

Error fileError(FileAction action, const QString& path, int errorNumber) {
    return makeError(action, path, errorNumber, errnoText(errorNumber));
}

Error foreignLinkError(const QString& path) {
    return makeError(FileAction::write, path, EACCES,
                     QStringLiteral("Der Weg dorthin führt über eine Verknüpfung, die ein anderer Benutzer "
                                    "angelegt hat."));
}

}  // namespace vellmora
