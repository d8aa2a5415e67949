#include "platform/view/PageDrawings.h"

#include "platform/pdf/PageDrawing.h"

#include <utility>

namespace vellmora {

PageDrawings::PageDrawings(QObject* parent) : QObject(parent) {
    m_thread.setMaxThreadCount(1);
}

PageDrawings::~PageDrawings() {
    m_thread.waitForDone();
}

void PageDrawings::setDocument(const std::shared_ptr<const PDFDocument>& document) {
    m_waiting.clear();
    m_source = document ? std::make_shared<Source>(Source{document->bytes(), nullptr}) : nullptr;
}

void PageDrawings::request(qsizetype pageIndex) {
    if (m_job == Job{m_source, pageIndex})
        return;
    std::erase(m_waiting, pageIndex);
    if (m_waiting.size() >= maxWaiting)
        m_waiting.erase(m_waiting.begin());
    m_waiting.push_back(pageIndex);
    drawNext();
}

void PageDrawings::drawNext() {
    if (m_job || m_waiting.empty())
        return;
    m_job = Job{m_source, m_waiting.back()};
    m_waiting.pop_back();
    m_thread.start([this, job = *m_job] {
        if (!job.source->document)
            job.source->document = PDFDocument::fromData(job.source->bytes);
        const auto& document = job.source->document;
        const QByteArray drawing = document ? makePageDrawing(*document, job.pageIndex) : QByteArray();
        QMetaObject::invokeMethod(
            this, [this, job, drawing] { take(job, drawing); }, Qt::QueuedConnection);
    });
}

void PageDrawings::take(const Job& job, const QByteArray& drawing) {
    m_job.reset();
    drawNext();
    if (job.source == m_source)
        Q_EMIT ready(job.pageIndex, drawing);
}

}  // namespace vellmora
