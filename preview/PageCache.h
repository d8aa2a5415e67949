#pragma once

#include "pdf/PDFDocument.h"
#include "preview/PagePdfQueue.h"
#include "preview/PageRenderer.h"

#include <memory>
#include <optional>

#include <QHash>
#include <QObject>
#include <QPixmap>
#include <QRect>

namespace vellmora {

/// The rendered pages of a document: the newest picture of each, as many as the memory budget allows, those
/// nearest to the page on screen kept longest. That page and its neighbours are kept whatever they take.
class PageCache : public QObject {
    Q_OBJECT

public:
    /// What is wanted of a page: the whole page is `fullSize` pixels large, of which `part` is rendered.
    struct Wish {
        QSize fullSize;
        QRect part;
        bool operator==(const Wish&) const = default;
    };
    struct Picture {
        QPixmap pixmap;  ///< null until a first picture is there, and where the page is unavailable
        Wish shows;      ///< what the pixmap is a picture of
        bool isUnavailable = false;
        bool isRendererBroken = false;  ///< unavailable through no fault of the page
    };

    /// `renderer` must outlive the object.
    explicit PageCache(PageRenderer& renderer);

    /// Forgets all pictures, but those of the first look at this document. The first page is drawn from now
    /// on, while nobody knows yet how large it will be.
    void setDocument(const std::shared_ptr<const PDFDocument>& document);

    /// The newest picture of a page; it may show another part or size than was asked for last.
    Picture picture(qsizetype pageIndex) const { return m_pages.value(pageIndex).picture; }
    /// Asks for a picture, unless it is there or on its way.
    void request(qsizetype pageIndex, const Wish& wish);
    /// The page around which pictures are kept. Where it was unavailable the next request asks again.
    void setCentre(qsizetype pageIndex);

Q_SIGNALS:
    void changed(qsizetype pageIndex);

private:
    struct Page {
        std::optional<QByteArray> pagePdf;  ///< until it is rendered; the centre's stays
        Picture picture;
        Wish wanted;
    };
    /// Of what is wanted.
    static bool hasPicture(const Page& page) {
        return !page.picture.pixmap.isNull() && page.picture.shows == page.wanted;
    }
    void continueWith(const std::shared_ptr<const PDFDocument>& document);
    void takePdf(qsizetype pageIndex, const QByteArray& pagePdf);
    void render(qsizetype pageIndex, const Page& page);
    void take(qsizetype pageIndex, const Wish& wish, const QImage& image);
    void keepPdfOfCentre();
    static qint64 bytesOf(const Page& page);
    void keepWithinBudget();

    static constexpr qint64 budgetBytes = qint64{48} << 20;

    PageRenderer& m_renderer;
    PagePdfQueue m_pdfs;
    QHash<qsizetype, Page> m_pages;
    qsizetype m_centre = 0;
    quint64 m_generation = 0;  ///< tells pictures of a document that is gone from those of this one
};

}  // namespace vellmora
