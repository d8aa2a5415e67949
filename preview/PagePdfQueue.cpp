#include "preview/PagePdfQueue.h"

#include "pdf/PagePdf.h"

#include <utility>

namespace vellmora {

PagePdfQueue::~PagePdfQueue() {
    endJob();
}

void PagePdfQueue::setDocument(const std::shared_ptr<const PDFDocument>& document) {
    m_waiting.clear();
    if (m_document != document)
        endJob();
    m_document = document;
}

void PagePdfQueue::endJob() {
    if (m_job)
        m_job->progress->cancel();
}

void PagePdfQueue::request(qsizetype pageIndex) {
    if (m_job && m_job->isFor(m_document, pageIndex))
        return;
    std::erase(m_waiting, pageIndex);
    if (m_waiting.size() >= maxWaiting)
        m_waiting.erase(m_waiting.begin());
    m_waiting.push_back(pageIndex);
    drawNext();
}

void PagePdfQueue::drawNext() {
    if (m_job || m_waiting.empty())
        return;
    m_job = Job{m_document, m_waiting.back(), std::make_shared<WorkProgress>()};
    m_waiting.pop_back();
    m_queue.run([this, job = *m_job] {
        const QByteArray pagePdf =
            job.document ? makePagePdf(*job.document, job.pageIndex, job.progress.get()) : QByteArray();
        QMetaObject::invokeMethod(
            this, [this, job, pagePdf] { take(job, pagePdf); }, Qt::QueuedConnection);
    });
}

void PagePdfQueue::take(const Job& job, const QByteArray& pagePdf) {
    m_job.reset();
    drawNext();
    if (job.document == m_document)
        Q_EMIT ready(job.pageIndex, pagePdf);
}

}  // namespace vellmora
