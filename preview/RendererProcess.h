#pragma once

#include "base/FileDescriptor.h"
#include "preview/RenderMessages.h"

#include <memory>
#include <optional>
#include <sys/types.h>

#include <QString>

namespace vellmora {

/// One running renderer process. It is killed and reaped with the object.
class RendererProcess {
public:
    /// Starts the program; null where that fails.
    static std::unique_ptr<RendererProcess> start(const QString& program);
    ~RendererProcess();
    RendererProcess(const RendererProcess&) = delete;
    RendererProcess& operator=(const RendererProcess&) = delete;

    pid_t pid() const { return m_pid; }
    /// Becomes readable when a reply is there or the process is gone.
    int socket() const { return m_socket.get(); }

    /// False where the process is gone. Never blocks.
    bool send(const RenderRequestMessage& request, int drawing, int pixels);
    /// Nothing where the process is gone or talks nonsense. To be called when the socket is readable.
    std::optional<RenderReplyMessage> receive();

private:
    RendererProcess(pid_t pid, FileDescriptor socket);

    pid_t m_pid;
    FileDescriptor m_socket;
};

}  // namespace vellmora
