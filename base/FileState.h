#pragma once

#include <ctime>
#include <optional>
#include <sys/types.h>

#include <QString>

namespace vellmora {

class FileDescriptor;

/// Which file it is, and what a change of it changes as well.
struct FileState {
    /// Throws `Error`, which names `path`.
    static FileState of(const FileDescriptor& file, const QString& path);
    /// Nothing where there is no such file, or it cannot be reached.
    static std::optional<FileState> of(const QString& path);

    /// Equal states mean the same content, but for a change that `isRecent` tells of.
    bool operator==(const FileState& other) const;

    dev_t device = 0;
    ino_t number = 0;
    off_t size = 0;  ///< in bytes
    timespec modified{};
    timespec changed{};
    /// The file was changed so lately that another change might leave all this as it is.
    bool isRecent = false;
};

}  // namespace vellmora
