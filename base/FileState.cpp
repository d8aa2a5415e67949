#include "base/FileState.h"

#include "base/FileDescriptor.h"
#include "base/FileError.h"

#include <cerrno>
#include <sys/stat.h>

#include <QFile>

namespace vellmora {

namespace {

/// Of the clocks of file systems, in seconds: FAT's.
constexpr time_t longestTick = 2;

FileState stateOf(const struct stat& info) {
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    return {info.st_dev,  info.st_ino,  info.st_size,
            info.st_mtim, info.st_ctim, now.tv_sec - info.st_ctim.tv_sec <= longestTick};
}

bool isSame(const timespec& a, const timespec& b) {
    return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
}

}  // namespace

FileState FileState::of(const FileDescriptor& file, const QString& path) {
    struct stat info {};
    if (::fstat(file.get(), &info) != 0)
        throw fileError(FileAction::read, path, errno);
    return stateOf(info);
}

std::optional<FileState> FileState::of(const QString& path) {
    struct stat info {};
    if (::stat(QFile::encodeName(path).constData(), &info) != 0)
        return std::nullopt;
    return stateOf(info);
}

bool FileState::operator==(const FileState& other) const {
    return device == other.device && number == other.number && size == other.size &&
           isSame(modified, other.modified) && isSame(changed, other.changed);
}

}  // namespace vellmora
