#pragma once

#include "base/FileSnapshot.h"
#include "base/WrittenContent.h"

#include <memory>
#include <optional>
#include <utility>

#include <QString>

namespace vellmora {

/// The contents that a document's file may have without being somebody else's: what was opened, and what was
/// written last.
class FileVersions {
public:
    /// What a file holds.
    enum class Held { nothing, opened, written, foreign };

    /// Knows no content: all is foreign.
    FileVersions() = default;
    explicit FileVersions(std::shared_ptr<const FileSnapshot> opened) : m_opened(std::move(opened)) {}

    /// This content is about to get a name. It counts as written from now on, beside the one before: where
    /// that fails late, nobody knows which of them the file holds.
    void expect(WrittenContent content) { m_expected = std::move(content); }
    /// It has got its name.
    void confirm() { m_written = std::exchange(m_expected, {}); }

    /// Compares the content, whatever the file's name and times are; `nothing` where there is no such file.
    /// A file that changes while it is compared is foreign. Throws `Error` where it cannot be read.
    Held heldBy(const QString& path) const;

private:
    Held heldBy(const FileDescriptor& file, const QString& path) const;

    std::shared_ptr<const FileSnapshot> m_opened;
    std::optional<WrittenContent> m_written;
    std::optional<WrittenContent> m_expected;
};

}  // namespace vellmora
