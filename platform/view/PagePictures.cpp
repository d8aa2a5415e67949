#include "platform/view/PagePictures.h"

#include "platform/pdf/PageDrawing.h"

#include <cstdlib>
#include <utility>

#include <QPointer>

namespace vellmora {

PagePictures::PagePictures(PageRenderer& renderer, QObject* parent) : QObject(parent), m_renderer(renderer) {}

void PagePictures::setDocument(std::shared_ptr<const PDFDocument> document) {
    m_document = std::move(document);
    m_pages.clear();
    ++m_generation;
}

void PagePictures::request(qsizetype pageIndex, const Wish& wish) {
    Page& page = m_pages[pageIndex];
    if (page.wanted == wish)
        return;
    page.wanted = wish;
    if (page.drawing.isEmpty())
        page.drawing = makePageDrawing(*m_document, pageIndex);
    const auto deliver = [self = QPointer<PagePictures>(this), pageIndex, wish,
                          generation = m_generation](const QImage& image) {
        if (self && self->m_generation == generation)
            self->take(pageIndex, wish, image);
    };
    m_renderer.render({page.drawing, wish.fullSize, wish.part}, deliver);
}

void PagePictures::take(qsizetype pageIndex, const Wish& wish, const QImage& image) {
    const auto page = m_pages.find(pageIndex);
    if (page == m_pages.end() || page->wanted != wish)
        return;
    page->picture = {QPixmap::fromImage(image), wish, image.isNull()};
    keepWithinBudget();
    Q_EMIT changed(pageIndex);
}

void PagePictures::setCentre(qsizetype pageIndex) {
    m_centre = pageIndex;
    // The renderer may have dropped what was asked for ahead of time: it is asked for again.
    const auto page = m_pages.find(pageIndex);
    if (page != m_pages.end() && page->picture.shows != page->wanted)
        page->wanted = {};
    keepWithinBudget();
}

static qint64 bytesOf(const QPixmap& pixmap) {
    return qint64{4} * pixmap.width() * pixmap.height();
}

void PagePictures::keepWithinBudget() {
    qint64 total = 0;
    for (const Page& page : m_pages)
        total += page.drawing.size() + bytesOf(page.picture.pixmap);
    while (total > budgetBytes && m_pages.size() > 1) {
        auto farthest = m_pages.begin();
        for (auto page = m_pages.begin(); page != m_pages.end(); ++page) {
            if (std::abs(page.key() - m_centre) > std::abs(farthest.key() - m_centre))
                farthest = page;
        }
        if (farthest.key() == m_centre)
            return;
        total -= farthest->drawing.size() + bytesOf(farthest->picture.pixmap);
        m_pages.erase(farthest);
    }
}

}  // namespace vellmora
