#pragma once

#include "base/FileDescriptor.h"

#include <QString>

namespace vellmora {

/// Whether a change is on the disk when the call that makes it returns. Without that a new file may turn out
/// empty after a loss of power, which suits only what is made anew at each start.
enum class Durability { synced, untilPowerLoss };

/// A hidden file beside the one that it is to become. It is locked (flock) as long as its maker lives, so
/// that what a crash left behind can be told from what another program is using.
struct TemporaryFile {
    QString path;
    FileDescriptor file;  ///< open for writing, holds the lock
};

/// A new empty file in `folder`, readable by its owner only. Throws `Error`.
TemporaryFile createTemporaryFile(const QString& folder);

/// Removes the temporary files of this user in `folder` that no program holds any more. Folders, links and
/// files of other names are never touched. Never fails: what cannot be removed stays.
void removeStaleTemporaryFiles(const QString& folder);

}  // namespace vellmora
