#pragma once

#include "platform/files/FileDescriptor.h"

#include <QString>

namespace vellmora {

/// Hidden temporary files and folders beside the file that they are made for. Each is locked (flock) as long
/// as its maker lives, so that what a crash left behind can be told from what another program is using.

struct TemporaryFile {
    QString path;
    FileDescriptor file;  ///< open for writing, holds the lock
};

/// A new empty file in `folder`, readable by its owner only. Throws `Error`.
TemporaryFile createTemporaryFile(const QString& folder);

struct TemporaryDirectory {
    QString path;
    FileDescriptor lock;  ///< the open folder
};

/// A new empty folder in `folder`, open to its owner only. Throws `Error`.
TemporaryDirectory createTemporaryDirectory(const QString& folder);

/// Removes the folder and the files in it. Never fails: what cannot be removed stays.
void removeTemporaryDirectory(const TemporaryDirectory& directory);

/// Removes the temporary items in `folder` that nobody holds any more. Never fails: what cannot be removed
/// stays.
void removeStaleTemporaryItems(const QString& folder);

}  // namespace vellmora
