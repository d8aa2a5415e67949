#pragma once

#include "base/ContentDigest.h"
#include "base/FileSnapshot.h"

#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include <QString>

namespace vellmora {

class FileDescriptor;

/// What was written to a file, in little memory and time: of long pieces of a snapshot only where they lie in
/// it, of all other bytes a digest.
class WrittenContent {
public:
    /// `source` is what most of the bytes may come from, by `FileSnapshot::view`; null for nothing.
    explicit WrittenContent(std::shared_ptr<const FileSnapshot> source = nullptr);

    void add(std::string_view bytes);
    uint64_t size() const { return m_size; }
    /// Whether the open file holds this and nothing else; `path` is what an error names. Throws `Error` where
    /// it cannot be read.
    bool isHeldBy(const FileDescriptor& file, const QString& path) const;

private:
    /// Bytes that lie side by side in the source, or of which none does.
    struct Run {
        const char* source = nullptr;  ///< null where they are counted in the digest
        uint64_t length = 0;
    };
    /// What follows the last run in the source; null where that is not of the source, or there is none.
    const char* nextInSource() const;
    bool isOfSource(std::string_view bytes) const;

    std::shared_ptr<const FileSnapshot> m_source;
    std::vector<Run> m_runs;
    ContentDigest m_others;
    uint64_t m_size = 0;
};

}  // namespace vellmora
