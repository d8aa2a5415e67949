#include "base/FileSnapshot.h"

#include "base/FileDescriptor.h"
#include "base/FileError.h"
#include "base/FileState.h"
#include "base/Files.h"
#include "base/WorkProgress.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <mutex>
#include <new>
#include <optional>
#include <sys/uio.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace vellmora {

namespace {

/// Below this size a thread costs more than it spares.
constexpr qint64 largeSize = 4 << 20;
/// How much of a file is read or compared at a time.
constexpr size_t pieceSize = size_t{256} << 10;
/// So often a small file that changes is read again.
constexpr int maxAttempts = 3;
/// In place of an error number.
constexpr int changedMeanwhile = -1;

Error readingFailure(int error, const QString& path) {
    if (error != changedMeanwhile)
        return fileError(FileAction::read, path, error);
    return Error(Error::vellmoraDomain, changedMeanwhile,
                 QStringLiteral("Die Datei wurde geändert, während sie gelesen wurde. Bitte erneut öffnen."));
}

/// Reads that much from an offset on; `flags` are the system's. The error number; 0 for success.
int readAt(const FileDescriptor& file, size_t offset, char* target, size_t length, int flags = 0) {
    while (length > 0) {
        const iovec part{target, length};
        const ssize_t count = ::preadv2(file.get(), &part, 1, static_cast<off_t>(offset), flags);
        if (count < 0 && errno == EINTR)
            continue;
        if (count == 0)
            return changedMeanwhile;
        if (count < 0)
            return errno;
        target += count;
        offset += static_cast<size_t>(count);
        length -= static_cast<size_t>(count);
    }
    return 0;
}

}  // namespace

void forEachPiece(const FileDescriptor& file, const QString& path,
                  const std::function<bool(std::string_view, size_t)>& take) {
    std::vector<char> piece(pieceSize);
    for (size_t offset = 0;;) {
        const ssize_t count = ::pread(file.get(), piece.data(), piece.size(), static_cast<off_t>(offset));
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            throw fileError(FileAction::read, path, errno);
        if (count == 0 || !take({piece.data(), static_cast<size_t>(count)}, offset))
            return;
        offset += static_cast<size_t>(count);
    }
}

/// Copies a large file into the memory, from its beginning to its end.
class FileSnapshot::Copying {
public:
    Copying(FileDescriptor file, QString path, FileSnapshot& target)
        : m_file(std::move(file)),
          m_path(std::move(path)),
          m_target(target),
          m_opened(FileState::of(m_file, m_path)) {}
    Copying(const Copying&) = delete;
    Copying& operator=(const Copying&) = delete;

    const FileDescriptor& file() const { return m_file; }
    const QString& path() const { return m_path; }

    void copyAll(const WorkProgress& progress) {
        while (!progress.isCancelled() && copyNext()) {
        }
        if (!progress.isCancelled() && m_error == 0)
            compareStates();
        if (!progress.isCancelled() && m_error == 0)
            m_target.m_memory.map();
    }

    void requireReadable() const {
        if (const int error = m_error; error != 0)
            throw readingFailure(error, m_path);
    }

    /// True where this is the file that was opened, and nobody has changed it since. To read a large one once
    /// more would take as long as to save it.
    bool isUntouched(const FileState& state) const { return !m_opened.isRecent && state == m_opened; }

    /// On this thread too, since the one of `copyAll` may have a low priority.
    void requireCopied() {
        while (copyNext()) {
        }
        requireReadable();
    }

    /// For who keeps all others from copying meanwhile.
    std::unique_lock<std::mutex> takeTurn() { return std::unique_lock(m_mutex); }

    /// Whether the system has in its memory most of what is not copied yet, as far as a few samples tell.
    /// Hardly ever for a file on a share: few of their file systems answer such a question.
    bool isAtHand() const {
        constexpr size_t samples = 16;
        const size_t copied = m_target.m_memory.copied();
        const size_t left = m_target.size() - copied;
        size_t found = 0;
        for (size_t i = 0; i < samples && left > 0; ++i) {
            char byte = 0;
            if (readAt(m_file, copied + (left - 1) / (samples - 1) * i, &byte, 1, RWF_NOWAIT) == 0)
                ++found;
        }
        return found > samples / 2;
    }

    bool isUntouched() const {
        const std::optional<FileState> now = state();
        return now && isUntouched(*now);
    }

    bool isAsLong() const {
        const std::optional<FileState> now = state();
        return now && now->size == m_opened.size;
    }

    void readFile(size_t offset, char* target, size_t length) const {
        if (const int error = readAt(m_file, offset, target, length); error != 0)
            throw readingFailure(error, m_path);
    }

    void requireWhole() {
        requireCopied();
        compareStates();
        requireReadable();
    }

private:
    std::optional<FileState> state() const {
        try {
            return FileState::of(m_file, m_path);
        } catch (const Error&) {
            return std::nullopt;
        }
    }

    /// False where nothing is left, or nothing can be read any more.
    bool copyNext() {
        const std::scoped_lock lock(m_mutex);
        SnapshotMemory& memory = m_target.m_memory;
        const size_t length = std::min(pieceSize, memory.size() - memory.copied());
        if (length == 0 || m_error != 0) {
            m_piece = std::vector<char>();
            return false;
        }
        m_piece.resize(length);
        m_error = readAt(m_file, memory.copied(), m_piece.data(), length);
        if (m_error == 0)
            append(memory);
        return m_error == 0;
    }

    void append(SnapshotMemory& memory) {
        try {
            memory.append({m_piece.data(), m_piece.size()});
        } catch (const std::bad_alloc&) {
            m_error = ENOMEM;
        }
    }

    /// Once all is copied, and once only: what changes later does not matter any more.
    void compareStates() {
        std::call_once(m_compared, [this] {
            try {
                // A file that only got another name or other permissions has not changed.
                if (!isUntouched(FileState::of(m_file, m_path)) && !m_target.isContentOf(m_file, m_path))
                    m_error = changedMeanwhile;
            } catch (const Error& error) {
                m_error = error.code();
            } catch (const std::bad_alloc&) {
                m_error = ENOMEM;
            }
        });
    }

    FileDescriptor m_file;
    QString m_path;
    FileSnapshot& m_target;
    FileState m_opened;
    std::mutex m_mutex;
    std::vector<char> m_piece;
    std::atomic<int> m_error = 0;
    std::once_flag m_compared;
};

/// Nothing where the file has changed meanwhile.
std::shared_ptr<const FileSnapshot> FileSnapshot::readAtOnce(const files::OpenedFile& opened,
                                                             const FileState& before, const QString& path) {
    const std::shared_ptr<FileSnapshot> content(new FileSnapshot(static_cast<size_t>(before.size)));
    SnapshotMemory& memory = content->m_memory;
    std::vector<char> piece(std::min(pieceSize, memory.size()));
    while (memory.copied() < memory.size()) {
        const size_t length = std::min(pieceSize, memory.size() - memory.copied());
        const int error = readAt(opened.file, memory.copied(), piece.data(), length);
        if (error == changedMeanwhile)
            return nullptr;
        if (error != 0)
            throw readingFailure(error, path);
        memory.append({piece.data(), length});
    }
    const bool isUntouched = !before.isRecent && FileState::of(opened.file, path) == before;
    return isUntouched || content->isContentOf(opened.file, path) ? content : nullptr;
}

std::shared_ptr<const FileSnapshot> FileSnapshot::open(const QString& path) {
    files::OpenedFile opened = files::openForReading(path);
    try {
        for (int attempt = 0; attempt < maxAttempts; ++attempt) {
            const FileState state = FileState::of(opened.file, path);
            if (state.size >= largeSize) {
                const std::shared_ptr<FileSnapshot> content(
                    new FileSnapshot(static_cast<size_t>(state.size)));
                content->m_copying = std::make_unique<Copying>(std::move(opened.file), path, *content);
                return content;
            }
            if (auto content = readAtOnce(opened, state, path))
                return content;
        }
    } catch (const std::bad_alloc&) {
        throw fileError(FileAction::read, path, ENOMEM);
    }
    throw readingFailure(changedMeanwhile, path);
}

FileSnapshot::FileSnapshot(size_t size) : m_memory(size) {}

FileSnapshot::FileSnapshot(const QByteArray& bytes) : FileSnapshot(static_cast<size_t>(bytes.size())) {
    m_memory.append({bytes.constData(), static_cast<size_t>(bytes.size())});
}

FileSnapshot::~FileSnapshot() = default;

void FileSnapshot::read(size_t offset, char* target, size_t length) const {
    if (m_copying && offset + length > m_memory.copied())
        m_copying->requireCopied();
    m_memory.read(offset, target, length);
}

std::string_view FileSnapshot::view(size_t offset, size_t length) const {
    const std::string_view all = m_memory.mapped();
    return offset <= all.size() && length <= all.size() - offset ? all.substr(offset, length)
                                                                 : std::string_view();
}

int FileSnapshot::file() const {
    return m_copying ? m_copying->file().get() : -1;
}

Error FileSnapshot::readingError(int error) const {
    return readingFailure(error, m_copying ? m_copying->path() : QString());
}

void FileSnapshot::copyAll(const WorkProgress& progress) const {
    if (m_copying)
        m_copying->copyAll(progress);
}

void FileSnapshot::requireReadable() const {
    if (m_copying)
        m_copying->requireReadable();
}

void FileSnapshot::requireWhole() const {
    if (m_copying)
        m_copying->requireWhole();
}

bool FileSnapshot::canBeReadDirectly() const {
    return m_copying && m_memory.copied() < size() && m_copying->isUntouched() && m_copying->isAtHand();
}

bool FileSnapshot::canBeShown() const {
    return m_copying && m_memory.copied() < size() && m_copying->isAsLong() && m_copying->isAtHand();
}

std::unique_ptr<const FileSnapshot::DirectReading> FileSnapshot::readDirectly() const {
    if (!canBeReadDirectly())
        return nullptr;
    return std::unique_ptr<const DirectReading>(new DirectReading(*this));
}

FileSnapshot::DirectReading::DirectReading(const FileSnapshot& content)
    : m_content(content), m_turn(content.m_copying->takeTurn()) {}

void FileSnapshot::DirectReading::read(size_t offset, char* target, size_t length) const {
    if (offset + length <= m_content.m_memory.copied())
        m_content.m_memory.read(offset, target, length);
    else
        m_content.m_copying->readFile(offset, target, length);
}

bool FileSnapshot::DirectReading::isOfOneTime() const {
    return m_content.m_copying->isUntouched();
}

bool FileSnapshot::isHeldBy(const FileDescriptor& file, const QString& path) const {
    const FileState state = FileState::of(file, path);
    if (state.size != static_cast<off_t>(size()))
        return false;
    if (m_copying) {
        m_copying->requireCopied();
        if (m_copying->isUntouched(state))
            return true;
    }
    return isContentOf(file, path);
}

bool FileSnapshot::isContentOf(const FileDescriptor& file, const QString& path) const {
    std::vector<char> copy;
    size_t compared = 0;
    forEachPiece(file, path, [&](std::string_view piece, size_t offset) {
        if (offset + piece.size() > size())
            return false;
        copy.resize(piece.size());
        m_memory.read(offset, copy.data(), copy.size());
        const bool isSame = std::string_view(copy.data(), copy.size()) == piece;
        compared += isSame ? piece.size() : 0;
        return isSame;
    });
    return compared == size() && FileState::of(file, path).size == static_cast<off_t>(size());
}

}  // namespace vellmora
