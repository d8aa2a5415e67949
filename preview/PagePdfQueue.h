#pragma once

#include "base/SerialQueue.h"
#include "base/WorkProgress.h"
#include "pdf/PDFDocument.h"

#include <memory>
#include <optional>
#include <vector>

#include <QByteArray>
#include <QObject>

namespace vellmora {

/// Makes PDFs of a document's single pages on a thread of its own, so that nothing waits for a page that
/// takes long.
class PagePdfQueue : public QObject {
    Q_OBJECT

public:
    PagePdfQueue() = default;
    /// Ends the making of a PDF, as far as it is not done.
    ~PagePdfQueue() override;

    const std::shared_ptr<const PDFDocument>& document() const { return m_document; }
    /// Forgets all requests, and ends what is being drawn: the document's process is lost with it.
    void setDocument(const std::shared_ptr<const PDFDocument>& document);
    /// The newest request is served first, and one that many newer ones have overtaken is dropped.
    void request(qsizetype pageIndex);

Q_SIGNALS:
    /// `pagePdf` as of `makePagePdf`: empty where the page cannot be drawn.
    void ready(qsizetype pageIndex, const QByteArray& pagePdf);

private:
    struct Job {
        std::shared_ptr<const PDFDocument> document;
        qsizetype pageIndex = 0;
        std::shared_ptr<WorkProgress> progress = nullptr;
        bool isFor(const std::shared_ptr<const PDFDocument>& other, qsizetype page) const {
            return document == other && pageIndex == page;
        }
    };
    void endJob();
    void drawNext();
    void take(const Job& job, const QByteArray& pagePdf);

    static constexpr size_t maxWaiting = 8;

    std::shared_ptr<const PDFDocument> m_document;
    std::vector<qsizetype> m_waiting;  ///< newest last
    std::optional<Job> m_job;
    SerialQueue m_queue;  ///< last: it ends first
};

}  // namespace vellmora
