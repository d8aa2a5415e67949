#include "desktop/FileIcons.h"

#include <QFileInfo>
#include <QMimeDatabase>

namespace vellmora {

static QMimeType typeByName(const QFileInfo& file) {
    return QMimeDatabase().mimeTypesForFileName(file.fileName()).value(0);
}

/// Asked of a provider that is gone afterwards: each keeps what it was asked for, in all sizes.
FileIcons::FileIcons()
    : m_file(inSmallSizes(QFileIconProvider().icon(File))),
      m_folder(inSmallSizes(QFileIconProvider().icon(Folder))) {}

QIcon FileIcons::inSmallSizes(const QIcon& icon) {
    constexpr int largest = 48;  // also on screens with twice as many pixels
    if (!icon.name().isEmpty())
        return icon;  // the desktop's, which is decoded where it is shown
    QIcon small;
    for (const QSize& size : icon.availableSizes()) {
        if (size.width() <= largest)
            small.addPixmap(icon.pixmap(size, 1));
    }
    return small.isNull() ? icon : small;
}

QIcon FileIcons::icon(IconType type) const {
    switch (type) {
        case File:
            return m_file;
        case Folder:
            return m_folder;
        default:
            return QFileIconProvider::icon(type);
    }
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
