#include "base/SharedMemory.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>
#include <utility>

namespace vellmora {

namespace {

bool seal(const FileDescriptor& file, int seals) {
    return ::fcntl(file.get(), F_ADD_SEALS, seals) == 0;
}

}  // namespace

SharedMemory::SharedMemory(size_t size)
    : m_file(::memfd_create("vellmora", MFD_CLOEXEC | MFD_ALLOW_SEALING)), m_size(size) {
    if (!m_file.isValid() || ::ftruncate(m_file.get(), static_cast<off_t>(size)) != 0 ||
        !seal(m_file, F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_SEAL))
        return;
    void* memory = ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, m_file.get(), 0);
    if (memory != MAP_FAILED)
        m_bytes = static_cast<unsigned char*>(memory);
}

SharedMemory::~SharedMemory() {
    if (m_bytes)
        ::munmap(m_bytes, m_size);
}

FileDescriptor sealedFile(const void* bytes, size_t size) {
    FileDescriptor file(::memfd_create("vellmora", MFD_CLOEXEC | MFD_ALLOW_SEALING));
    const auto* next = static_cast<const char*>(bytes);
    while (file.isValid() && size > 0) {
        const ssize_t count = ::write(file.get(), next, size);
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return {};
        next += count;
        size -= static_cast<size_t>(count);
    }
    constexpr int seals = F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_FUTURE_WRITE | F_SEAL_SEAL;
    return file.isValid() && seal(file, seals) ? std::move(file) : FileDescriptor();
}

}  // namespace vellmora
