#pragma once

#include <unistd.h>
#include <utility>

namespace vellmora {

/// Owns one POSIX file descriptor.
class FileDescriptor {
public:
    FileDescriptor() = default;
    explicit FileDescriptor(int fd) : m_fd(fd) {}
    ~FileDescriptor() { reset(); }
    FileDescriptor(FileDescriptor&& other) noexcept : m_fd(std::exchange(other.m_fd, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        if (this != &other) {
            reset();
            m_fd = std::exchange(other.m_fd, -1);
        }
        return *this;
    }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;

    bool isValid() const { return m_fd >= 0; }
    int get() const { return m_fd; }
    /// Closes and answers what close(2) answered: a write that failed late is reported here.
    int close() { return ::close(std::exchange(m_fd, -1)); }

private:
    void reset() {
        if (isValid())
            ::close(m_fd);
    }

    int m_fd = -1;
};

}  // namespace vellmora
