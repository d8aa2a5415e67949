#include "base/SharedMemory.h"

#include <fcntl.h>
#include <sys/mman.h>

namespace vellmora {

SharedMemory::SharedMemory(size_t size)
    : m_file(::memfd_create("vellmora", MFD_CLOEXEC | MFD_ALLOW_SEALING)), m_size(size) {
    if (!m_file.isValid() || ::ftruncate(m_file.get(), static_cast<off_t>(size)) != 0)
        return;
    if (::fcntl(m_file.get(), F_ADD_SEALS, F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_SEAL) != 0)
        return;
    void* memory = ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, m_file.get(), 0);
    if (memory != MAP_FAILED)
        m_bytes = static_cast<unsigned char*>(memory);
}

SharedMemory::~SharedMemory() {
    if (m_bytes)
        ::munmap(m_bytes, m_size);
}

}  // namespace vellmora
