#include "desktop/FileIcons.h"

#include <QFileInfo>
#include <QMimeDatabase>

namespace vellmora {

static QMimeType typeByName(const QFileInfo& file) {
    return QMimeDatabase().mimeTypesForFileName(file.fileName()).value(0);
}

QIcon FileIcons::icon(const QFileInfo& file) const {
    if (!file.isFile())
        return icon(file.isDir() ? Folder : File);
    const QMimeType type = typeByName(file);
    const QIcon generic = QIcon::fromTheme(type.genericIconName(), icon(File));
    return QIcon::fromTheme(type.iconName(), generic);
}

QString FileIcons::type(const QFileInfo& file) const {
    if (!file.isFile())
        return QFileIconProvider::type(file);
    const QMimeType type = typeByName(file);
    return type.comment().isEmpty() ? file.suffix() : type.comment();
}

}  // namespace vellmora
