#pragma once

#include "preview/RendererProcess.h"

#include <memory>
#include <optional>

#include <QObject>
#include <QSocketNotifier>

namespace vellmora {

/// The renderer processes of a program: the one that serves, which knows one document at most, and where it
/// was asked for a spare one that takes over from it at once. A process is started only when this class is
/// asked for something; one that ends is not replaced by itself.
class RendererSupply : public QObject {
    Q_OBJECT

public:
    /// `program` is the renderer's file.
    explicit RendererSupply(QString program);
    ~RendererSupply() override;

    /// Has a process started for the next document, ahead of its first request.
    void prepare();
    /// Ends a process that was given something to render, has another one take over, and forgets failures.
    void changeProcess();
    /// Ends the process.
    void end();
    /// Ends the process for what it did or did not do.
    void endFailed();

    /// Starts a process where there is none. False where none can be had. Never blocks.
    bool send(const RenderRequestMessage& request, int pagePdf, int pixels);

    bool isReady() const { return m_isReady; }
    /// Several processes in a row failed before they were ready.
    bool isBroken() const { return m_failedStarts >= maxFailedStarts; }
    std::optional<pid_t> processID() const;

Q_SIGNALS:
    /// The process waits for its first request, or works at it.
    void ready();
    void answered(bool isRendered);
    /// The process ended by itself, or talked nonsense and was ended.
    void ended(bool wasReady);

private:
    void provide();
    void take();
    void listen();

    static constexpr int maxFailedStarts = 3;

    QString m_program;
    std::unique_ptr<RendererProcess> m_spare;
    std::unique_ptr<RendererProcess> m_process;
    std::unique_ptr<QSocketNotifier> m_notifier;
    bool m_isReady = false;
    bool m_hasServed = false;
    int m_failedStarts = 0;
};

}  // namespace vellmora
