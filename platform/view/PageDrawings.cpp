#include "platform/view/PageDrawings.h"

#include "platform/pdf/PageDrawing.h"

#include <utility>

namespace vellmora {

PageDrawings::PageDrawings() {
    m_thread.setMaxThreadCount(1);
}

PageDrawings::~PageDrawings() {
    m_thread.waitForDone();
}

void PageDrawings::setDocument(const std::shared_ptr<const PDFDocument>& document) {
    m_waiting.clear();
    m_document = document;
}

void PageDrawings::request(qsizetype pageIndex) {
    if (m_job == Job{m_document, pageIndex})
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
    m_job = Job{m_document, m_waiting.back()};
    m_waiting.pop_back();
    m_thread.start([this, job = *m_job] {
        const QByteArray drawing =
            job.document ? makePageDrawing(*job.document, job.pageIndex) : QByteArray();
        QMetaObject::invokeMethod(
            this, [this, job, drawing] { take(job, drawing); }, Qt::QueuedConnection);
    });
}

void PageDrawings::take(const Job& job, const QByteArray& drawing) {
    m_job.reset();
    drawNext();
    if (job.document == m_document)
        Q_EMIT ready(job.pageIndex, drawing);
}

}  // namespace vellmora
