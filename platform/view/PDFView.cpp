#include "platform/view/PDFView.h"

#include "platform/pdf/PageDrawing.h"

#include <cmath>
#include <utility>

#include <QKeyEvent>
#include <QPainter>
#include <QWheelEvent>

namespace vellmora {

namespace {

constexpr double pageMargin = 8;  // view points around a page that fits
constexpr int wheelNotch = 120;   // the toolkit's unit: eighths of a degree

const QString unavailableText = QStringLiteral(
    "Diese Seite kann nicht angezeigt werden.\nStempeln und speichern lässt sie sich trotzdem.");

}  // namespace

PDFView::PDFView(PageRenderer& renderer, QWidget* parent) : QWidget(parent), m_renderer(renderer) {
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAccessibleName(QStringLiteral("Seitenansicht"));
}

void PDFView::setAutoScales(bool autoScales) {
    m_autoScales = autoScales;
    m_offset = {};
    update();
    Q_EMIT scaleChanged();
}

void PDFView::setBackgroundColor(const QColor& color) {
    m_backgroundColor = color;
    update();
}

double PDFView::scaleFactor() const {
    if (!m_autoScales || !m_currentPage)
        return m_fixedScale;
    const Rect box = m_document->page(*m_currentPage)->bounds(DisplayBox::cropBox);
    return PageGeometry::fittingScale(box, {double(width()), double(height())}, pageMargin);
}

void PDFView::setScaleFactor(double scale) {
    m_autoScales = false;
    m_fixedScale = scale;
    update();
    Q_EMIT scaleChanged();
}

void PDFView::setScrollOffset(Point offset) {
    m_offset = offset;
    update();
    Q_EMIT scaleChanged();
}

void PDFView::setDocument(std::shared_ptr<const PDFDocument> document) {
    m_document = std::move(document);
    const bool hasPages = m_document && m_document->pageCount() > 0;
    showPage(hasPages ? std::optional<qsizetype>(0) : std::nullopt);
}

void PDFView::goTo(qsizetype pageIndex) {
    if (m_document && m_document->page(pageIndex) && m_currentPage != pageIndex)
        showPage(pageIndex);
}

void PDFView::showPage(std::optional<qsizetype> pageIndex) {
    m_currentPage = pageIndex;
    m_drawing = pageIndex ? makePageDrawing(*m_document, *pageIndex) : QByteArray();
    m_picture = {};
    m_isUnavailable = m_currentPage && m_drawing.isEmpty();
    m_requestedSize = {};
    m_offset = {};
    ++m_pageTurn;
    update();
    Q_EMIT pageChanged();
}

std::optional<PageGeometry> PDFView::geometryOfPage() const {
    if (!m_currentPage)
        return std::nullopt;
    const Rect box = m_document->page(*m_currentPage)->bounds(DisplayBox::cropBox);
    const PageGeometry::View view{{double(width()), double(height())}, devicePixelRatioF()};
    return PageGeometry(box, view, scaleFactor(), m_offset);
}

Rect PDFView::convertFromPage(const Rect& pageRect) const {
    const auto geometry = geometryOfPage();
    return geometry ? geometry->toView(pageRect) : Rect{};
}

Rect PDFView::convertToPage(const Rect& viewRect) const {
    const auto geometry = geometryOfPage();
    return geometry ? geometry->toPage(viewRect) : Rect{};
}

void PDFView::requestPicture(QSize pixelSize) {
    if (pixelSize == m_requestedSize || m_drawing.isEmpty())
        return;
    m_requestedSize = pixelSize;
    const auto deliver = [view = QPointer<PDFView>(this), pixelSize, turn = m_pageTurn](const QImage& image) {
        if (!view || view->m_pageTurn != turn || view->m_requestedSize != pixelSize)
            return;
        view->takePicture(image);
    };
    m_renderer.render({m_drawing, pixelSize}, deliver);
}

void PDFView::takePicture(const QImage& image) {
    m_isUnavailable = image.isNull();
    m_picture = QPixmap::fromImage(image);
    update();
}

void PDFView::paintPage(QPainter& painter, const PageGeometry& geometry) const {
    const QRectF frame = toToolkit(geometry.frame(), height());
    if (!m_picture.isNull()) {
        painter.setRenderHint(QPainter::SmoothPixmapTransform, m_picture.size() != geometry.pixelSize());
        painter.drawPixmap(frame, m_picture, QRectF(m_picture.rect()));
        return;
    }
    painter.fillRect(frame, Qt::white);
    if (m_isUnavailable) {
        painter.setPen(Qt::darkGray);
        painter.drawText(frame, Qt::AlignCenter | Qt::TextWordWrap, unavailableText);
    }
}

void PDFView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), m_backgroundColor);
    const auto geometry = geometryOfPage();
    if (!geometry)
        return;
    paintPage(painter, *geometry);
    requestPicture(geometry->pixelSize());
}

void PDFView::resizeEvent(QResizeEvent*) {
    Q_EMIT scaleChanged();
}

void PDFView::turnPages(qsizetype count) {
    if (!m_currentPage)
        return;
    goTo(qBound<qsizetype>(0, *m_currentPage + count, m_document->pageCount() - 1));
}

void PDFView::wheelEvent(QWheelEvent* event) {
    const int travel = event->angleDelta().y();
    if ((travel > 0) != (m_wheelTravel > 0))
        m_wheelTravel = 0;
    m_wheelTravel += travel;
    const int notches = m_wheelTravel / wheelNotch;
    m_wheelTravel -= notches * wheelNotch;
    turnPages(-notches);
    event->accept();
}

void PDFView::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
        case Qt::Key_PageDown:
        case Qt::Key_Down:
        case Qt::Key_Right:
            turnPages(1);
            break;
        case Qt::Key_PageUp:
        case Qt::Key_Up:
        case Qt::Key_Left:
            turnPages(-1);
            break;
        case Qt::Key_Home:
            goTo(0);
            break;
        case Qt::Key_End:
            if (m_document)
                goTo(m_document->pageCount() - 1);
            break;
        default:
            QWidget::keyPressEvent(event);
    }
}

}  // namespace vellmora
