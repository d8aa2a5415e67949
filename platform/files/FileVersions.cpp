#include "platform/files/FileVersions.h"

#include "platform/files/FileError.h"
#include "platform/files/Files.h"

#include <cerrno>

namespace vellmora {

namespace {

std::optional<files::OpenedFile> openUnlessGone(const QString& path) {
    try {
        return files::openForReading(path);
    } catch (const Error& error) {
        if (error.code() == ENOENT)
            return std::nullopt;
        throw;
    }
}

ContentDigest digestOf(const FileDescriptor& file, const QString& path) {
    ContentDigest digest;
    forEachPiece(file, path, [&](std::string_view piece, size_t) {
        digest.add(piece);
        return true;
    });
    return digest;
}

}  // namespace

FileVersions::Held FileVersions::heldBy(const QString& path) const {
    const auto file = openUnlessGone(path);
    if (!file)
        return Held::nothing;
    if (m_opened && m_opened->isHeldBy(file->file, path))
        return Held::opened;
    const auto mayBe = [&](const auto& content) {
        return content && content->size() == static_cast<uint64_t>(file->size);
    };
    if (mayBe(m_written) || mayBe(m_expected)) {
        const ContentDigest held = digestOf(file->file, path);
        if (held == m_written || held == m_expected)
            return Held::written;
    }
    return Held::foreign;
}

}  // namespace vellmora
