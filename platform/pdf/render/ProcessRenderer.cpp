#include "platform/pdf/render/ProcessRenderer.h"

#include <cstring>
#include <utility>

#include <QCoreApplication>
#include <QFileInfo>

namespace vellmora {

ProcessRenderer::ProcessRenderer(QString program, std::chrono::milliseconds timeLimit)
    : m_program(std::move(program)) {
    m_limit.setSingleShot(true);
    m_limit.setInterval(timeLimit);
    connect(&m_limit, &QTimer::timeout, this, &ProcessRenderer::giveUp);
}

ProcessRenderer::~ProcessRenderer() = default;

QString ProcessRenderer::installedProgram() {
    const QString folder = QCoreApplication::applicationDirPath();
    const QString name = QStringLiteral("/vellmora-render");
    const QString inBuildTree = folder + QStringLiteral("/libexec/vellmora") + name;
    return QFileInfo::exists(inBuildTree) ? inBuildTree
                                          : folder + QStringLiteral("/" VELLMORA_RENDERER_DIR) + name;
}

std::optional<pid_t> ProcessRenderer::processID() const {
    return m_process ? std::optional(m_process->pid()) : std::nullopt;
}

void ProcessRenderer::prepare() {
    if (!m_process)
        startProcess();
}

void ProcessRenderer::startProcess() {
    m_process = RendererProcess::start(m_program);
    if (!m_process)
        return;
    m_notifier = std::make_unique<QSocketNotifier>(m_process->socket(), QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &ProcessRenderer::takeReply);
}

void ProcessRenderer::render(const PageRenderRequest& request, Completion completion) {
    if (m_waiting.size() >= maxWaiting)
        m_waiting.pop_front();
    m_waiting.push_back({request, std::move(completion), false});
    QMetaObject::invokeMethod(this, &ProcessRenderer::serveNewest, Qt::QueuedConnection);
}

void ProcessRenderer::serveNext() {
    while (!m_job && !m_waiting.empty()) {
        Waiting work = std::move(m_waiting.back());
        m_waiting.pop_back();
        const Completion completion = work.completion;
        if (!begin(std::move(work)))
            completion({});
    }
}

bool ProcessRenderer::begin(Waiting work) {
    const QSize page = work.request.pixelSize;
    const QRect part = work.request.part;
    const qint64 pixelCount = qint64(part.width()) * part.height();
    if (part.isEmpty() || !QRect(QPoint(0, 0), page).contains(part) || pixelCount > maxRenderedPixels ||
        work.request.drawing.isEmpty())
        return false;
    const auto drawingSize = static_cast<size_t>(work.request.drawing.size());
    SharedMemory drawing(drawingSize);
    auto pixels = std::make_unique<SharedMemory>(static_cast<size_t>(pixelCount) * sizeof(QRgb));
    if (!drawing.isValid() || !pixels->isValid())
        return false;
    std::memcpy(drawing.bytes(), work.request.drawing.constData(), drawingSize);
    const RenderRequestMessage message{drawingSize, page.width(), page.height(), part.x(),
                                       part.y(),    part.width(), part.height()};
    const auto isSent = [&] {
        return m_process && m_process->send(message, drawing.descriptor(), pixels->descriptor());
    };
    if (!isSent()) {
        replaceProcess();
        if (!isSent())
            return false;
    }
    m_job = Job{std::move(work), std::move(pixels), {}};
    m_job->age.start();
    m_limit.start();
    return true;
}

void ProcessRenderer::takeReply() {
    const std::optional<RenderReplyMessage> reply = m_process->receive();
    if (!reply || !m_job)
        return processEnded();
    QImage image;
    if (reply->isRendered) {
        const QSize size = m_job->work.request.part.size();
        const qsizetype rowLength = qsizetype{size.width()} * qsizetype{sizeof(QRgb)};
        // A copy: the other process could still write to the memory.
        image = QImage(m_job->pixels->bytes(), size.width(), size.height(), rowLength, QImage::Format_RGB32)
                    .copy();
    }
    finish(image);
}

/// The process is gone or talks nonsense. It may have been dying before it was given the page, so the page is
/// tried once more.
void ProcessRenderer::processEnded() {
    if (!m_job || m_job->work.isSecondTry)
        return giveUp();
    Waiting again = std::move(m_job->work);
    again.isSecondTry = true;
    m_job.reset();
    m_limit.stop();
    replaceProcess();
    m_waiting.push_back(std::move(again));
    serveNext();
}

/// Puts off a page that takes long, for newer ones; it has its full time when they are done.
void ProcessRenderer::serveNewest() {
    if (m_job && m_job->age.hasExpired(patience.count()) && !m_waiting.empty()) {
        m_waiting.push_front(std::move(m_job->work));
        m_job.reset();
        m_limit.stop();
        replaceProcess();
    }
    serveNext();
}

void ProcessRenderer::replaceProcess() {
    m_notifier.reset();
    m_process.reset();
    startProcess();
}

/// The page cannot be had: it takes too long, or broke two processes.
void ProcessRenderer::giveUp() {
    replaceProcess();
    if (m_job)
        finish({});
}

void ProcessRenderer::finish(const QImage& image) {
    m_limit.stop();
    const Completion completion = std::move(m_job->work.completion);
    m_job.reset();
    QMetaObject::invokeMethod(this, &ProcessRenderer::serveNext, Qt::QueuedConnection);
    completion(image);
}

}  // namespace vellmora
