#pragma once

#include "platform/pdf/PDFDocument.h"
#include "platform/pdf/render/PageRenderer.h"
#include "platform/view/PageGeometry.h"

#include <memory>
#include <optional>

#include <QPainter>
#include <QPixmap>
#include <QPointer>
#include <QWidget>

namespace vellmora {

/// Shows one page of a document at a time. The wheel and the arrow and page keys turn the pages.
///
/// View space is measured in view points from the view's lower left corner, y upwards.
class PDFView : public QWidget {
    Q_OBJECT

public:
    /// `renderer` must outlive the view.
    PDFView(PageRenderer& renderer, QWidget* parent);

    /// True: the page is scaled to fit the view, also when the view is resized. The default is false.
    void setAutoScales(bool autoScales);
    void setBackgroundColor(const QColor& color);

    /// View points for each point of the page.
    double scaleFactor() const;
    /// Shows the page at a fixed scale from now on; `autoScales` ends.
    void setScaleFactor(double scale);
    /// How far the page lies from the view's centre, in view points.
    void setScrollOffset(Point offset);

    const std::shared_ptr<const PDFDocument>& document() const { return m_document; }
    /// Shows the first page where there is one. Notifies of a page change.
    void setDocument(std::shared_ptr<const PDFDocument> document);

    /// Index of the page on screen; nothing without a document or with an empty one.
    std::optional<qsizetype> currentPageIndex() const { return m_currentPage; }
    /// Does nothing for an index that the document does not have, or for the page on screen.
    void goTo(qsizetype pageIndex);

    /// Both need a current page; without one they give an empty rectangle.
    Rect convertFromPage(const Rect& pageRect) const;
    Rect convertToPage(const Rect& viewRect) const;

Q_SIGNALS:
    void pageChanged();
    /// The mapping between page and view changed: scale, size of the view or scroll offset.
    void scaleChanged();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    std::optional<PageGeometry> geometryOfPage() const;
    void turnPages(qsizetype count);
    void showPage(std::optional<qsizetype> pageIndex);
    void requestPicture(QSize pixelSize);
    void takePicture(const QImage& image);
    void paintPage(QPainter& painter, const PageGeometry& geometry) const;

    PageRenderer& m_renderer;
    std::shared_ptr<const PDFDocument> m_document;
    std::optional<qsizetype> m_currentPage;
    QColor m_backgroundColor = Qt::black;
    bool m_autoScales = false;
    double m_fixedScale = 1;
    Point m_offset;
    int m_wheelTravel = 0;  ///< in eighths of a degree since the last page was turned

    QByteArray m_drawing;          ///< of the current page
    QPixmap m_picture;             ///< of the current page; may be of another size than is wanted
    QSize m_requestedSize;         ///< of the picture that was asked for last
    bool m_isUnavailable = false;  ///< the current page cannot be rendered
    quint64 m_pageTurn = 0;        ///< tells pictures of a page that is gone from those of the page on screen
};

}  // namespace vellmora
