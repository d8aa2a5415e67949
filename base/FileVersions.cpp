#include "base/FileVersions.h"

#include "base/Error.h"
#include "base/FileState.h"
#include "base/Files.h"

#include <cerrno>

namespace vellmora {

namespace {

/// So often a file is compared that changes, or gets another in its place, meanwhile.
constexpr int maxAttempts = 3;

std::optional<files::OpenedFile> openUnlessGone(const QString& path) {
    try {
        return files::openForReading(path);
    } catch (const Error& error) {
        if (error.code() == ENOENT)
            return std::nullopt;
        throw;
    }
}

}  // namespace

FileVersions::Held FileVersions::heldBy(const QString& path) const {
    for (int attempt = 0; attempt < maxAttempts; ++attempt) {
        const auto opened = openUnlessGone(path);
        if (!opened)
            return Held::nothing;
        const FileState before = FileState::of(opened->file, path);
        const Held held = heldBy(opened->file, path);
        if (held == Held::foreign || FileState::of(path) == before)
            return held;
    }
    return Held::foreign;
}

FileVersions::Held FileVersions::heldBy(const FileDescriptor& file, const QString& path) const {
    if (m_opened && m_opened->isHeldBy(file, path))
        return Held::opened;
    const auto size = static_cast<uint64_t>(FileState::of(file, path).size);
    const auto isHeld = [&](const std::optional<WrittenContent>& content) {
        return content && content->size() == size && content->isHeldBy(file, path);
    };
    return isHeld(m_written) || isHeld(m_expected) ? Held::written : Held::foreign;
}

}  // namespace vellmora
