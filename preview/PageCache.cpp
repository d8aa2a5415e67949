#include "preview/PageCache.h"

#include <cstdlib>
#include <utility>

#include <QPointer>

namespace vellmora {

PageCache::PageCache(PageRenderer& renderer) : m_renderer(renderer) {
    connect(&m_pdfs, &PagePdfQueue::ready, this, &PageCache::takePdf);
}

void PageCache::setDocument(const std::shared_ptr<const PDFDocument>& document) {
    if (document && document->firstLook() && document->firstLook() == m_pdfs.document())
        return continueWith(document);
    m_pdfs.setDocument(document);
    m_renderer.beginDocument();
    m_pages.clear();
    ++m_generation;
    if (document && document->pageCount() > 0) {
        m_pages.insert(0, {});
        m_pdfs.request(0);
    }
}

/// What was being drawn of the first look has ended with it.
void PageCache::continueWith(const std::shared_ptr<const PDFDocument>& document) {
    m_pdfs.setDocument(document);
    for (auto page = m_pages.cbegin(); page != m_pages.cend(); ++page) {
        if (!page->pagePdf)
            m_pdfs.request(page.key());
    }
}

void PageCache::request(qsizetype pageIndex, const Wish& wish) {
    Page& page = m_pages[pageIndex];
    if (page.wanted == wish)
        return;
    page.wanted = wish;
    if (page.pagePdf)
        render(pageIndex, page);
    else
        m_pdfs.request(pageIndex);
}

void PageCache::takePdf(qsizetype pageIndex, const QByteArray& pagePdf) {
    const auto page = m_pages.find(pageIndex);
    if (page == m_pages.end())
        return;
    const bool isRendered = hasPicture(*page);
    // What has a picture can be drawn, and is asked for again.
    if (isRendered && pagePdf.isEmpty())
        return;
    page->pagePdf = pagePdf;
    if (!isRendered && page->wanted != Wish())
        render(pageIndex, *page);
}

void PageCache::render(qsizetype pageIndex, const Page& page) {
    const auto deliver = [self = QPointer<PageCache>(this), pageIndex, wish = page.wanted,
                          generation = m_generation](const QImage& image) {
        if (self && self->m_generation == generation)
            self->take(pageIndex, wish, image);
    };
    m_renderer.render({*page.pagePdf, page.wanted.fullSize, page.wanted.part}, deliver);
}

void PageCache::take(qsizetype pageIndex, const Wish& wish, const QImage& image) {
    const auto page = m_pages.find(pageIndex);
    if (page == m_pages.end() || page->wanted != wish)
        return;
    page->picture = {QPixmap::fromImage(image), wish, image.isNull(),
                     image.isNull() && m_renderer.isBroken()};
    keepPdfOfCentre();
    keepWithinBudget();
    Q_EMIT changed(pageIndex);
}

void PageCache::setCentre(qsizetype pageIndex) {
    m_centre = pageIndex;
    // The renderer may have dropped what was asked for ahead of time, and what missed its time on a busy
    // machine may be there in time now: both are asked for again.
    const auto page = m_pages.find(pageIndex);
    if (page != m_pages.end() && (page->picture.shows != page->wanted || page->picture.isUnavailable)) {
        page->wanted = {};
        if (page->pagePdf && page->pagePdf->isEmpty())
            page->pagePdf.reset();
    }
    keepPdfOfCentre();
    keepWithinBudget();
}

/// Only the page on screen is scaled by its user, and its PDF is at hand for that. A scan's is half as large
/// as its picture.
void PageCache::keepPdfOfCentre() {
    for (auto page = m_pages.begin(); page != m_pages.end(); ++page) {
        if (!hasPicture(*page))
            continue;
        if (page.key() != m_centre)
            page->pagePdf.reset();
        else if (!page->pagePdf)
            m_pdfs.request(m_centre);
    }
}

qint64 PageCache::bytesOf(const Page& page) {
    const qint64 pixels = qint64{page.picture.pixmap.width()} * page.picture.pixmap.height();
    return pixels * qint64{sizeof(QRgb)} + (page.pagePdf ? page.pagePdf->size() : 0);
}

void PageCache::keepWithinBudget() {
    qint64 total = 0;
    for (const Page& page : m_pages)
        total += bytesOf(page);
    while (total > budgetBytes) {
        const auto distance = [this](const auto& page) { return std::abs(page.key() - m_centre); };
        auto farthest = m_pages.begin();
        for (auto page = m_pages.begin(); page != m_pages.end(); ++page) {
            if (distance(page) > distance(farthest))
                farthest = page;
        }
        // Its neighbours stay, since the view would ask for them again, and again.
        if (distance(farthest) <= 1)
            return;
        total -= bytesOf(*farthest);
        m_pages.erase(farthest);
    }
}

}  // namespace vellmora
