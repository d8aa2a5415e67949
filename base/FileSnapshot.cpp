#include "base/FileSnapshot.h"

#include "base/FileDescriptor.h"
#include "base/FileError.h"
#include "base/FileState.h"
#include "base/Files.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <mutex>
#include <new>
#include <sys/resource.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

namespace vellmora {

namespace {

/// Small, since a document is opened with little from many places.
constexpr size_t blockSize = 1 << 13;
/// As many blocks as are read at once, where nobody waits for less.
constexpr size_t runLength = 16;
/// Below this size a thread costs more than it spares.
constexpr qint64 largeSize = 4 << 20;
/// How much of a file is compared at a time.
constexpr size_t pieceSize = size_t{256} << 10;
/// So often a small file that changes is read again.
constexpr int maxAttempts = 3;
/// Of the thread that reads what nobody waits for; the first page is to be on the screen before.
constexpr int lowestPriority = 19;
/// In place of an error number.
constexpr int changedMeanwhile = -1;

Error readingFailure(int error, const QString& path) {
    if (error != changedMeanwhile)
        return fileError(FileAction::read, path, error);
    return Error(Error::vellmoraDomain, changedMeanwhile,
                 QStringLiteral("Die Datei wurde geändert, während sie gelesen wurde. Bitte erneut öffnen."));
}

bool holds(const FileDescriptor& file, const QString& path, std::string_view bytes) {
    size_t compared = 0;
    forEachPiece(file, path, [&](std::string_view piece, size_t offset) {
        const bool isSame = bytes.substr(offset, piece.size()) == piece;
        compared += isSame ? piece.size() : 0;
        return isSame;
    });
    return compared == bytes.size() && FileState::of(file, path).size == static_cast<off_t>(bytes.size());
}

QByteArray readSmall(files::OpenedFile& opened, const QString& path) {
    for (int attempt = 0; attempt < maxAttempts; ++attempt) {
        const FileState before = FileState::of(opened.file, path);
        opened.size = before.size;
        ::lseek(opened.file.get(), 0, SEEK_SET);
        QByteArray bytes = files::read(opened, path);
        const bool isUntouched = !before.isRecent && FileState::of(opened.file, path) == before;
        if (isUntouched || holds(opened.file, path, {bytes.constData(), static_cast<size_t>(bytes.size())}))
            return bytes;
    }
    throw readingFailure(changedMeanwhile, path);
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

/// Fills the memory block by block. Each block is read once, by whoever claims it first.
class FileSnapshot::Reading {
public:
    Reading(FileDescriptor file, QString path, char* bytes, size_t size)
        : m_file(std::move(file)),
          m_path(std::move(path)),
          m_bytes(bytes),
          m_size(size),
          m_opened(FileState::of(m_file, m_path)),
          m_blocks((size + blockSize - 1) / blockSize),
          m_thread([this](const std::stop_token& stop) { readAll(stop); }) {}

    void require(size_t offset, size_t length) {
        if (length == 0)
            return;
        const size_t end = (offset + length - 1) / blockSize + 1;
        for (size_t block = offset / blockSize; block < end; ++block) {
            if (m_blocks[block] == State::missing)
                readRun(block, end);
            m_blocks[block].wait(State::claimed);
            if (m_blocks[block] == State::failed)
                requireReadable();
        }
    }

    void readAhead() {
        m_isNeeded = true;
        m_isNeeded.notify_all();
    }

    void requireReadable() const {
        if (const int error = m_error; error != 0)
            throw readingFailure(error, m_path);
    }

    void requireWhole() {
        require(0, m_size);
        compareStates();
        requireReadable();
    }

private:
    enum class State { missing, claimed, there, failed };

    void readAll(const std::stop_token& stop) {
        const std::stop_callback wakeUp(stop, [this] { readAhead(); });
        m_isNeeded.wait(false);
        ::setpriority(PRIO_PROCESS, static_cast<id_t>(::gettid()), lowestPriority);
        for (size_t block = 0; block < m_blocks.size() && !stop.stop_requested() && m_error == 0;)
            block = std::max(readRun(block, std::min(block + runLength, m_blocks.size())), block + 1);
        for (const std::atomic<State>& block : m_blocks)
            block.wait(State::claimed);
        if (!stop.stop_requested() && m_error == 0)
            compareStates();
    }

    /// Once all is read, and once only: what changes later does not matter any more.
    void compareStates() {
        std::call_once(m_compared, [this] {
            try {
                // A file that only got another name or other permissions has not changed.
                const bool isUntouched = !m_opened.isRecent && FileState::of(m_file, m_path) == m_opened;
                if (!isUntouched && !holds(m_file, m_path, {m_bytes, m_size}))
                    m_error = changedMeanwhile;
            } catch (const Error& error) {
                m_error = error.code();
            } catch (const std::bad_alloc&) {
                m_error = ENOMEM;
            }
        });
    }

    /// Reads the blocks up to `end`, or to the first that somebody else reads or has read; answers it.
    size_t readRun(size_t begin, size_t end) {
        size_t behind = begin;
        for (State state = State::missing;
             behind < end && m_blocks[behind].compare_exchange_strong(state, State::claimed); ++behind) {
        }
        const int error = behind == begin ? 0 : read(begin, behind);
        if (error != 0)
            m_error = error;
        for (size_t block = begin; block < behind; ++block) {
            m_blocks[block] = error == 0 ? State::there : State::failed;
            m_blocks[block].notify_all();
        }
        return behind;
    }

    /// The error number; 0 for success.
    int read(size_t firstBlock, size_t endBlock) {
        size_t at = firstBlock * blockSize;
        const size_t end = std::min(endBlock * blockSize, m_size);
        while (at < end) {
            const ssize_t count = ::pread(m_file.get(), m_bytes + at, end - at, static_cast<off_t>(at));
            if (count < 0 && errno == EINTR)
                continue;
            if (count <= 0)
                return count < 0 ? errno : changedMeanwhile;
            at += static_cast<size_t>(count);
        }
        return 0;
    }

    FileDescriptor m_file;
    QString m_path;
    char* m_bytes;
    size_t m_size;
    FileState m_opened;
    std::vector<std::atomic<State>> m_blocks;
    std::atomic<int> m_error = 0;
    std::atomic<bool> m_isNeeded = false;
    std::once_flag m_compared;
    std::jthread m_thread;
};

std::shared_ptr<const FileSnapshot> FileSnapshot::open(const QString& path) {
    files::OpenedFile opened = files::openForReading(path);
    if (opened.size < largeSize)
        return std::make_shared<const FileSnapshot>(readSmall(opened, path));
    try {
        QByteArray bytes(opened.size, Qt::Uninitialized);
        char* memory = bytes.data();
        const auto size = static_cast<size_t>(opened.size);
        auto reading = std::make_unique<Reading>(std::move(opened.file), path, memory, size);
        return std::shared_ptr<const FileSnapshot>(new FileSnapshot(std::move(bytes), std::move(reading)));
    } catch (const std::bad_alloc&) {
        throw fileError(FileAction::read, path, ENOMEM);
    } catch (const std::system_error& error) {  // no thread is to be had
        throw fileError(FileAction::read, path, error.code().value());
    }
}

FileSnapshot::FileSnapshot(QByteArray bytes) : m_bytes(std::move(bytes)) {}

FileSnapshot::FileSnapshot(QByteArray bytes, std::unique_ptr<Reading> reading)
    : m_bytes(std::move(bytes)), m_reading(std::move(reading)) {}

FileSnapshot::~FileSnapshot() = default;

std::string_view FileSnapshot::range(size_t offset, size_t length) const {
    if (m_reading)
        m_reading->require(offset, length);
    return {m_bytes.constData() + offset, length};
}

void FileSnapshot::readAhead() const {
    if (m_reading)
        m_reading->readAhead();
}

void FileSnapshot::requireReadable() const {
    if (m_reading)
        m_reading->requireReadable();
}

void FileSnapshot::requireWhole() const {
    if (m_reading)
        m_reading->requireWhole();
}

bool FileSnapshot::isHeldBy(const FileDescriptor& file, const QString& path) const {
    return FileState::of(file, path).size == m_bytes.size() && holds(file, path, all());
}

}  // namespace vellmora
