#include "platform/files/FileContent.h"

#include "platform/files/FileDescriptor.h"
#include "platform/files/FileError.h"
#include "platform/files/Files.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <new>
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
/// Before the rest is read: who opened the file has something to show first.
constexpr std::chrono::milliseconds headStart{200};
/// Below this size a thread costs more than it spares.
constexpr qint64 largeSize = 4 << 20;

}  // namespace

/// Fills the memory block by block. Each block is read once, by whoever claims it first.
class FileContent::Reading {
public:
    Reading(FileDescriptor file, QString path, char* bytes, size_t size)
        : m_file(std::move(file)),
          m_path(std::move(path)),
          m_bytes(bytes),
          m_size(size),
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
        const std::lock_guard lock(m_mutex);
        m_isNeeded = true;
        m_need.notify_all();
    }

    void requireReadable() const {
        if (const int error = m_error; error != 0)
            throw fileError(FileAction::read, m_path, error);
    }

private:
    enum class State { missing, claimed, there, failed };

    void readAll(const std::stop_token& stop) {
        {
            std::unique_lock lock(m_mutex);
            m_need.wait_for(lock, stop, headStart, [this] { return m_isNeeded; });
        }
        for (size_t block = 0; block < m_blocks.size() && !stop.stop_requested() && m_error == 0;)
            block = std::max(readRun(block, std::min(block + runLength, m_blocks.size())), block + 1);
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

    /// The error number; 0 for success. A file that has become shorter counts as one that cannot be read.
    int read(size_t firstBlock, size_t endBlock) {
        size_t at = firstBlock * blockSize;
        const size_t end = std::min(endBlock * blockSize, m_size);
        while (at < end) {
            const ssize_t count = ::pread(m_file.get(), m_bytes + at, end - at, static_cast<off_t>(at));
            if (count < 0 && errno == EINTR)
                continue;
            if (count <= 0)
                return count < 0 ? errno : EIO;
            at += static_cast<size_t>(count);
        }
        return 0;
    }

    FileDescriptor m_file;
    QString m_path;
    char* m_bytes;
    size_t m_size;
    std::vector<std::atomic<State>> m_blocks;
    std::atomic<int> m_error = 0;
    std::mutex m_mutex;
    std::condition_variable_any m_need;
    bool m_isNeeded = false;  ///< guarded by the mutex
    std::jthread m_thread;
};

std::shared_ptr<const FileContent> FileContent::open(const QString& path) {
    files::OpenedFile opened = files::openForReading(path);
    if (opened.size < largeSize)
        return std::make_shared<const FileContent>(files::read(opened, path));
    try {
        QByteArray bytes(opened.size, Qt::Uninitialized);
        char* memory = bytes.data();
        const auto size = static_cast<size_t>(opened.size);
        auto reading = std::make_unique<Reading>(std::move(opened.file), path, memory, size);
        return std::shared_ptr<const FileContent>(new FileContent(std::move(bytes), std::move(reading)));
    } catch (const std::bad_alloc&) {
        throw fileError(FileAction::read, path, ENOMEM);
    } catch (const std::system_error& error) {  // no thread is to be had
        throw fileError(FileAction::read, path, error.code().value());
    }
}

FileContent::FileContent(QByteArray bytes) : m_bytes(std::move(bytes)) {}

FileContent::FileContent(QByteArray bytes, std::unique_ptr<Reading> reading)
    : m_bytes(std::move(bytes)), m_reading(std::move(reading)) {}

FileContent::~FileContent() = default;

std::string_view FileContent::range(size_t offset, size_t length) const {
    if (m_reading)
        m_reading->require(offset, length);
    return {m_bytes.constData() + offset, length};
}

void FileContent::readAhead() const {
    if (m_reading)
        m_reading->readAhead();
}

void FileContent::requireReadable() const {
    if (m_reading)
        m_reading->requireReadable();
}

}  // namespace vellmora
