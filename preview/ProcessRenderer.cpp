#include "preview/ProcessRenderer.h"

#include "base/HelperProcess.h"

#include <functional>
#include <numeric>
#include <utility>

namespace vellmora {

namespace {

QImage copyOf(const SharedMemory& pixels, QSize size) {
    const qsizetype rowLength = qsizetype{size.width()} * qsizetype{sizeof(QRgb)};
    return QImage(pixels.bytes(), size.width(), size.height(), rowLength, QImage::Format_RGB32).copy();
}

/// False where any pixel is as it was in the new memory.
bool isPainted(const QImage& image) {
    QRgb common = qRgb(0, 0, 0);
    for (int y = 0; y < image.height(); ++y) {
        const auto* row = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        common = std::accumulate(row, row + image.width(), common, std::bit_and<>());
    }
    return qAlpha(common) == 255;
}

}  // namespace

ProcessRenderer::ProcessRenderer(QString program, std::chrono::milliseconds timeLimit)
    : m_supply(std::move(program)) {
    m_limit.setSingleShot(true);
    m_limit.setInterval(timeLimit);
    connect(&m_limit, &QTimer::timeout, this, &ProcessRenderer::giveUp);
    connect(&m_supply, &RendererSupply::ready, this, &ProcessRenderer::startClock);
    connect(&m_supply, &RendererSupply::answered, this, &ProcessRenderer::takeAnswer);
    connect(&m_supply, &RendererSupply::ended, this, &ProcessRenderer::processEnded);
}

ProcessRenderer::~ProcessRenderer() = default;

QString ProcessRenderer::installedProgram() {
    return HelperProcess::installed(QStringLiteral("vellmora-render"));
}

void ProcessRenderer::beginDocument() {
    m_waiting.clear();
    if (m_job)
        takeJob();
    m_refused.clear();
    m_supply.changeProcess();
}

void ProcessRenderer::render(const PageRenderRequest& request, Completion completion) {
    if (m_waiting.size() >= maxWaiting)
        m_waiting.pop_front();
    m_waiting.push_back({request, std::move(completion), false});
    QMetaObject::invokeMethod(this, &ProcessRenderer::serveNewest, Qt::QueuedConnection);
}

/// Puts off a page that takes long, for newer ones; it has its full time when they are done.
void ProcessRenderer::serveNewest() {
    if (m_job && m_supply.isReady() && m_job->age.hasExpired(patience.count()) && !m_waiting.empty()) {
        m_waiting.push_front(takeJob());
        m_supply.end();
    }
    serveNext();
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

/// Where nothing can be rendered, asking for the same page again is no reason for another try.
bool ProcessRenderer::isHopeless(const PageRenderRequest& request) const {
    return isBroken() && request.pagePdf == m_refused;
}

bool ProcessRenderer::begin(Waiting work) {
    const QSize page = work.request.pixelSize;
    const QRect part = work.request.part;
    const qint64 pixelCount = qint64(part.width()) * part.height();
    if (part.isEmpty() || !QRect(QPoint(0, 0), page).contains(part) || pixelCount > maxRenderedPixels ||
        work.request.pagePdf.isEmpty() || isHopeless(work.request))
        return false;
    const auto pdfSize = static_cast<size_t>(work.request.pagePdf.size());
    const FileDescriptor pagePdf = sealedFile(work.request.pagePdf.constData(), pdfSize);
    auto pixels = std::make_unique<SharedMemory>(static_cast<size_t>(pixelCount) * sizeof(QRgb));
    if (!pagePdf.isValid() || !pixels->isValid())
        return false;
    const RenderRequestMessage message{pdfSize,  page.width(), page.height(), part.x(),
                                       part.y(), part.width(), part.height()};
    if (!m_supply.send(message, pagePdf.get(), pixels->descriptor())) {
        m_refused = work.request.pagePdf;
        return false;
    }
    m_job = Job{std::move(work), std::move(pixels), {}};
    startClock();
    return true;
}

/// A page has its full time from the moment when its process is ready.
void ProcessRenderer::startClock() {
    if (!m_job)
        return;
    m_job->age.start();
    m_limit.start();
}

ProcessRenderer::Waiting ProcessRenderer::takeJob() {
    m_limit.stop();
    Waiting work = std::move(m_job->work);
    m_job.reset();
    return work;
}

void ProcessRenderer::takeAnswer(bool isRendered) {
    if (!m_job)
        return m_supply.end();
    if (!isRendered)
        return finish({});
    // A copy: the other process could still write to the memory.
    const QImage image = copyOf(*m_job->pixels, m_job->work.request.part.size());
    if (isPainted(image))
        return finish(image);
    m_supply.endFailed();
    processEnded(true);
}

/// The process may have been dying before it was given the page, so the page is tried once more; with one
/// that never became ready the page has nothing to do.
void ProcessRenderer::processEnded(bool wasReady) {
    if (!m_job)
        return;
    if (wasReady ? m_job->work.isSecondTry : isBroken())
        return giveUp();
    Waiting again = takeJob();
    again.isSecondTry = again.isSecondTry || wasReady;
    m_waiting.push_back(std::move(again));
    serveNext();
}

/// The page cannot be had: it takes too long, or broke two processes, or no process starts.
void ProcessRenderer::giveUp() {
    m_supply.endFailed();
    if (!m_job)
        return;
    if (isBroken())
        m_refused = m_job->work.request.pagePdf;
    finish({});
}

void ProcessRenderer::finish(const QImage& image) {
    const Waiting work = takeJob();
    QMetaObject::invokeMethod(this, &ProcessRenderer::serveNext, Qt::QueuedConnection);
    work.completion(image);
}

}  // namespace vellmora
