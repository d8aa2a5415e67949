#pragma once

#include "platform/pdf/render/PageRenderer.h"
#include "platform/pdf/render/RendererProcess.h"
#include "platform/pdf/render/SharedMemory.h"

#include <chrono>
#include <deque>
#include <memory>
#include <optional>

#include <QElapsedTimer>
#include <QObject>
#include <QSocketNotifier>
#include <QTimer>

namespace vellmora {

/// Renders in a process of its own, which is started with the first request and again whenever it is needed.
/// A page that crashes the process, or takes longer than the limit, is answered with a null image, and the
/// process is killed.
class ProcessRenderer : public QObject, public PageRenderer {
    Q_OBJECT

public:
    static constexpr std::chrono::milliseconds defaultTimeLimit{4000};

    /// `program` is the renderer's file.
    explicit ProcessRenderer(QString program, std::chrono::milliseconds timeLimit = defaultTimeLimit);
    ~ProcessRenderer() override;

    /// The renderer that belongs to the running program: below it in a build tree, or where it was installed.
    /// Found from the program's own place, so that an installation can be moved.
    static QString installedProgram();

    /// Starts the process ahead of the first request, which then takes less time.
    void prepare();
    void render(const PageRenderRequest& request, Completion completion) override;

    /// Of the running process; nothing while there is none.
    std::optional<pid_t> processID() const;

private:
    struct Waiting {
        PageRenderRequest request;
        Completion completion;
        bool isSecondTry = false;
    };
    struct Job {
        Waiting work;
        std::unique_ptr<SharedMemory> pixels;
        QElapsedTimer age;
    };

    void startProcess();
    void serveNewest();
    void serveNext();
    bool begin(Waiting work);
    void takeReply();
    void processEnded();
    void replaceProcess();
    void giveUp();
    void finish(const QImage& image);

    static constexpr size_t maxWaiting = 8;
    /// What has been running for this long makes way for a newer request.
    static constexpr std::chrono::milliseconds patience{700};

    QString m_program;
    std::unique_ptr<RendererProcess> m_process;
    std::unique_ptr<QSocketNotifier> m_notifier;
    QTimer m_limit;
    std::deque<Waiting> m_waiting;  ///< newest last
    std::optional<Job> m_job;
};

}  // namespace vellmora
