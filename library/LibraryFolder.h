#pragma once

#include "base/Folders.h"
#include "library/StampPreset.h"

#include <QDateTime>
#include <QList>
#include <QString>

namespace vellmora {

/// Where the library lies: the metadata file and, beside it, the folder of the pictures. All paths are made
/// anew at each call.
class LibraryFolder {
public:
    static const QString metadataFileName;

    explicit LibraryFolder(Folders folders);

    QString root() const;
    QString stampsDirectory() const;
    QString metadataPath() const;
    /// Of the lock under which the metadata is changed.
    QString lockPath() const;
    /// Where those pictures are noted that are being decoded.
    QString decodingDirectory() const;
    /// A path beside the metadata file that no file has yet, for one that cannot be read.
    QString unusedAsidePath(const QDateTime& now) const;
    /// Of a preset's picture. Empty where the name would lead out of the folder.
    QString filePath(const StampPreset& preset) const;

    /// Throws `Error`.
    void ensureDirectories() const;
    /// Those whose picture is there, or cannot be told to be gone.
    QList<StampPreset> withPictures(QList<StampPreset> presets) const;

private:
    Folders m_folders;
};

}  // namespace vellmora
