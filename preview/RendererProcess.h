#pragma once

#include "base/HelperProcess.h"
#include "preview/RenderMessages.h"

#include <memory>
#include <optional>

#include <QString>

namespace vellmora {

/// One running renderer process. It is killed and reaped with the object.
class RendererProcess {
public:
    /// Starts the program; null where that fails.
    static std::unique_ptr<RendererProcess> start(const QString& program);

    pid_t pid() const { return m_process->pid(); }
    /// Becomes readable when a reply is there or the process is gone.
    int socket() const { return m_process->socket(); }

    /// False where the process is gone. Never blocks.
    bool send(const RenderRequestMessage& request, int pagePdf, int pixels);
    /// Nothing where the process is gone or talks nonsense. To be called when the socket is readable.
    std::optional<RenderReplyMessage> receive();

private:
    explicit RendererProcess(std::unique_ptr<HelperProcess> process) : m_process(std::move(process)) {}

    std::unique_ptr<HelperProcess> m_process;
};

}  // namespace vellmora
