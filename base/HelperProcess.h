#pragma once

#include "base/FileDescriptor.h"

#include <memory>
#include <sys/types.h>

#include <QString>

namespace vellmora {

/// One running helper program and the program's end of a socket to it. It is killed and reaped with the
/// object. A helper that confines itself ends also when the thread ends that started it.
class HelperProcess {
public:
    /// What goes over the socket: packets that are kept apart, or a stream of bytes.
    enum class Talk { packets, stream };

    /// Starts the program, which finds its end of the socket as `helperSocket`. Null where that fails.
    static std::unique_ptr<HelperProcess> start(const QString& program, Talk talk);
    ~HelperProcess();
    HelperProcess(const HelperProcess&) = delete;
    HelperProcess& operator=(const HelperProcess&) = delete;

    /// A helper that belongs to the running program: below it in a build tree, or where it was installed.
    /// Found from the program's own place, so that an installation can be moved.
    static QString installed(const QString& name);

    pid_t pid() const { return m_pid; }
    /// Becomes readable when an answer is there or the process is gone.
    int socket() const { return m_socket.get(); }

private:
    HelperProcess(pid_t pid, FileDescriptor socket);

    pid_t m_pid;
    FileDescriptor m_socket;
};

/// A helper finds its end of the socket here.
inline constexpr int helperSocket = 3;

}  // namespace vellmora
