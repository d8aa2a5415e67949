#pragma once

#include "platform/files/TemporaryItems.h"

namespace vellmora {

/// A fresh hidden folder on the volume of the file that is to be replaced, in which its replacement is
/// written. It goes away with the object; what crashed programs left is cleared when the next one is made.
class ReplacementDirectory {
public:
    /// Throws `Error` (POSIX domain) where no folder can be made beside the original.
    explicit ReplacementDirectory(const QString& original);
    ~ReplacementDirectory();
    ReplacementDirectory(const ReplacementDirectory&) = delete;
    ReplacementDirectory& operator=(const ReplacementDirectory&) = delete;

    const QString& path() const { return m_directory.path; }

    /// Puts `replacement` (a file on the disk, in this folder) in the place of the original in one step. The
    /// new file's metadata holds. A symbolic link stays: the file behind it is replaced. Throws `Error`.
    void replaceOriginal(const QString& replacement);

private:
    QString m_original;
    TemporaryDirectory m_directory;
};

}  // namespace vellmora
