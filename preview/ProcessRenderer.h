#pragma once

#include "base/SharedMemory.h"
#include "preview/PageRenderer.h"
#include "preview/RendererSupply.h"

#include <chrono>
#include <deque>
#include <memory>
#include <optional>

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

namespace vellmora {

/// Renders in a process of its own for each document, which is started when it is needed. A page that crashes
/// the process, or takes longer than the limit, is answered with a null image, and the process is killed.
class ProcessRenderer : public QObject, public PageRenderer {
    Q_OBJECT

public:
    static constexpr std::chrono::milliseconds defaultTimeLimit{4000};

    /// `program` is the renderer's file. The limit is that of a page, and that of a process for its start.
    explicit ProcessRenderer(QString program, std::chrono::milliseconds timeLimit = defaultTimeLimit);
    ~ProcessRenderer() override;

    /// The renderer that belongs to the running program.
    static QString installedProgram();

    /// Starts a process for the next document ahead of its first request, which then takes less time.
    void prepare() { m_supply.prepare(); }

    void beginDocument() override;
    void render(const PageRenderRequest& request, Completion completion) override;
    bool isBroken() const override { return m_supply.isBroken(); }

    /// Of the running process; nothing while there is none.
    std::optional<pid_t> processID() const { return m_supply.processID(); }

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

    void serveNewest();
    void serveNext();
    bool begin(Waiting work);
    bool isHopeless(const PageRenderRequest& request) const;
    void startClock();
    Waiting takeJob();
    void takeAnswer(bool isRendered);
    void processEnded(bool wasReady);
    void giveUp();
    void finish(const QImage& image);

    static constexpr size_t maxWaiting = 8;
    /// What has been running for this long makes way for a newer request.
    static constexpr std::chrono::milliseconds patience{700};

    RendererSupply m_supply;
    QTimer m_limit;
    std::deque<Waiting> m_waiting;  ///< newest last
    std::optional<Job> m_job;
    QByteArray m_refused;  ///< the page that was given up last because no process could be had
};

}  // namespace vellmora
