#include "preview/RendererSupply.h"

#include <utility>

namespace vellmora {

RendererSupply::RendererSupply(QString program) : m_program(std::move(program)) {}

RendererSupply::~RendererSupply() = default;

std::optional<pid_t> RendererSupply::processID() const {
    return m_process ? std::optional(m_process->pid()) : std::nullopt;
}

void RendererSupply::prepare() {
    if (m_hasServed && !m_spare)
        m_spare = RendererProcess::start(m_program);
    provide();
}

void RendererSupply::provide() {
    if (!m_process)
        take();
}

void RendererSupply::changeProcess() {
    if (m_hasServed)
        end();
    provide();
    m_failedStarts = 0;
}

/// The spare process becomes the one that serves; without one, another is started.
void RendererSupply::take() {
    m_process = m_spare ? std::move(m_spare) : RendererProcess::start(m_program);
    m_isReady = false;
    m_hasServed = false;
    if (!m_process) {
        ++m_failedStarts;
        return;
    }
    m_notifier = std::make_unique<QSocketNotifier>(m_process->socket(), QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &RendererSupply::listen);
}

void RendererSupply::endFailed() {
    if (m_process && !m_isReady)
        ++m_failedStarts;
    end();
}

void RendererSupply::end() {
    m_notifier.reset();
    m_process.reset();
    m_isReady = false;
    m_hasServed = false;
}

bool RendererSupply::send(const RenderRequestMessage& request, int pagePdf, int pixels) {
    // The process may have ended since it was last heard of.
    do {
        provide();
        if (m_process && m_process->send(request, pagePdf, pixels)) {
            m_hasServed = true;
            return true;
        }
        endFailed();
    } while (!isBroken());
    return false;
}

void RendererSupply::listen() {
    const std::optional<RenderReplyMessage> reply = m_process->receive();
    const auto content = reply ? std::optional(static_cast<RenderReply>(reply->content)) : std::nullopt;
    if (content == RenderReply::ready && !m_isReady) {
        m_isReady = true;
        m_failedStarts = 0;
        Q_EMIT ready();
    } else if (m_isReady && (content == RenderReply::rendered || content == RenderReply::notRendered)) {
        Q_EMIT answered(content == RenderReply::rendered);
    } else {
        const bool wasReady = m_isReady;
        endFailed();
        Q_EMIT ended(wasReady);
    }
}

}  // namespace vellmora
