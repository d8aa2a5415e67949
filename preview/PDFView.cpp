#include "preview/PDFView.h"

#include "base/SystemColors.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace vellmora {

namespace {

constexpr double pageMargin = 8;  // view points around a page that fits
constexpr double focusLineWidth = 2;

/// How far a page can be zoomed, as multiples of the scale at which it fits.
constexpr double smallestZoom = 0.5;
constexpr double largestZoom = 12;
/// View points for each point of the page to which every page can be zoomed, however large or narrow it is.
constexpr double readableScale = 4;

/// A page with more pixels than this is rendered in parts.
constexpr qint64 maxWholePagePixels = qint64{12} << 20;
/// How much more than what is in sight a part covers, as a share of the view on each side.
constexpr double partAllowance = 0.3;

const QString unavailableText = QStringLiteral(
    "Diese Seite kann nicht angezeigt werden.\nStempeln und speichern lässt sie sich trotzdem.");
const QString brokenText = QStringLiteral(
    "Die Seitenanzeige startet nicht. Beim nächsten Blättern wird es erneut versucht.\n"
    "Stempeln und speichern lassen sich die Seiten trotzdem.");

const QString& noticeFor(const PageCache::Picture& picture) {
    return picture.isRendererBroken ? brokenText : unavailableText;
}

}  // namespace

PDFView::PDFView(PageRenderer& renderer, QWidget* parent)
    : QWidget(parent), m_scrollBars(new PageScrollBars(this)), m_pictures(renderer) {
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAccessibleName(QStringLiteral("Seitenansicht"));
    connect(&m_pictures, &PageCache::changed, this, [this] { update(); });
    m_scrollBars->onScrolled = [this](Point offset) { setScrollOffset(offset); };
}

void PDFView::setAutoScales(bool autoScales) {
    m_autoScales = autoScales;
    m_offset = {};
    followLayout();
    Q_EMIT scaleChanged();
}

void PDFView::setBackgroundColor(const QColor& color) {
    m_backgroundColor = color;
    update();
}

Rect PDFView::shownBox() const {
    return m_document->page(*m_currentPage)->bounds(DisplayBox::cropBox);
}

double PDFView::fittingScale() const {
    return PageGeometry::fittingScale(shownBox(), viewSize(), pageMargin);
}

double PDFView::withinLimits(double scale) const {
    const double fitting = fittingScale();
    return std::clamp(scale, smallestZoom * fitting, std::max(largestZoom * fitting, readableScale));
}

double PDFView::scaleFactor() const {
    return m_autoScales && m_currentPage ? fittingScale() : m_fixedScale;
}

void PDFView::setScaleFactor(double scale) {
    m_autoScales = false;
    m_fixedScale = m_currentPage ? withinLimits(scale) : scale;
    m_offset = clampedOffset(m_offset);
    followLayout();
    Q_EMIT scaleChanged();
}

void PDFView::zoom(double factor, Point anchor) {
    if (!m_currentPage)
        return;
    const double before = scaleFactor();
    m_autoScales = false;
    m_fixedScale = withinLimits(before * factor);
    const double growth = m_fixedScale / before;
    // The anchor's distance from the page's centre grows with the page.
    const double dx = anchor.x - centre().x - m_offset.x;
    const double dy = anchor.y - centre().y - m_offset.y;
    setScrollOffset({m_offset.x + dx * (1 - growth), m_offset.y + dy * (1 - growth)});
}

/// How far the page can be scrolled from its middle to either side.
Point PDFView::scrollRange() const {
    const Rect box = shownBox();
    const double scale = scaleFactor();
    return {std::max(0.0, (box.width * scale - width()) / 2 + pageMargin),
            std::max(0.0, (box.height * scale - height()) / 2 + pageMargin)};
}

bool PDFView::canScroll() const {
    return m_currentPage && !m_autoScales && !(scrollRange() == Point{});
}

/// To be called when the page lies elsewhere in the view.
void PDFView::followLayout() {
    m_scrollBars->show(m_offset, canScroll() ? scrollRange() : Point{});
    updateCursor();
    update();
}

Point PDFView::clampedOffset(Point offset) const {
    if (!m_currentPage || m_autoScales)
        return {};
    const Point range = scrollRange();
    return {std::clamp(offset.x, -range.x, range.x), std::clamp(offset.y, -range.y, range.y)};
}

void PDFView::setScrollOffset(Point offset) {
    m_offset = clampedOffset(offset);
    followLayout();
    Q_EMIT scaleChanged();
}

void PDFView::setDocument(std::shared_ptr<const PDFDocument> document) {
    m_document = std::move(document);
    m_pictures.setDocument(m_document);
    const bool hasPages = m_document && m_document->pageCount() > 0;
    showPage(hasPages ? std::optional<qsizetype>(0) : std::nullopt);
}

void PDFView::goTo(qsizetype pageIndex) {
    if (m_document && m_document->page(pageIndex) && m_currentPage != pageIndex)
        showPage(pageIndex);
}

void PDFView::showPage(std::optional<qsizetype> pageIndex) {
    m_currentPage = pageIndex;
    m_wheelTravel = 0;
    if (pageIndex) {
        m_pictures.setCentre(*pageIndex);
        m_fixedScale = withinLimits(m_fixedScale);
    }
    // A page is read from its top.
    m_offset = clampedOffset({m_offset.x, -std::numeric_limits<double>::max()});
    followLayout();
    Q_EMIT pageChanged();
}

QString PDFView::pageDescription() const {
    if (!m_currentPage)
        return {};
    const QString place =
        m_document->isFirstLook()
            ? QStringLiteral("Seite 1")
            : QStringLiteral("Seite %1 von %2").arg(*m_currentPage + 1).arg(m_document->pageCount());
    const PageCache::Picture picture = m_pictures.picture(*m_currentPage);
    return picture.isUnavailable ? place + QStringLiteral(". ") + noticeFor(picture) : place;
}

std::optional<PageGeometry> PDFView::geometryOfPage() const {
    if (!m_currentPage)
        return std::nullopt;
    return PageGeometry(shownBox(), {viewSize(), devicePixelRatioF()}, scaleFactor(), m_offset);
}

Rect PDFView::convertFromPage(const Rect& pageRect) const {
    const auto geometry = geometryOfPage();
    return geometry ? geometry->toView(pageRect) : Rect{};
}

Rect PDFView::convertToPage(const Rect& viewRect) const {
    const auto geometry = geometryOfPage();
    return geometry ? geometry->toPage(viewRect) : Rect{};
}

/// The whole page, or of a very large one the part in sight and some more.
PageCache::Wish PDFView::wishFor(const PageGeometry& geometry) const {
    const QSize full = geometry.pixelSize();
    const QRect whole(QPoint(0, 0), full);
    if (qint64(full.width()) * full.height() <= maxWholePagePixels)
        return {full, whole};
    const double ratio = devicePixelRatioF();
    const QRectF frame = toQt(geometry.frame(), height());
    const QRectF inSight((QPointF(0, 0) - frame.topLeft()) * ratio, QSizeF(size()) * ratio);
    const PageCache::Wish shown = m_pictures.picture(*m_currentPage).shows;
    if (shown.fullSize == full && shown.part.contains(inSight.toAlignedRect().intersected(whole)))
        return shown;
    const double dx = inSight.width() * partAllowance;
    const double dy = inSight.height() * partAllowance;
    return {full, inSight.adjusted(-dx, -dy, dx, dy).toAlignedRect().intersected(whole)};
}

/// The page on screen; once it is there, its neighbours, so that turning the page shows them at once.
void PDFView::requestPictures(const PageGeometry& geometry) {
    const PageCache::Wish wish = wishFor(geometry);
    m_pictures.request(*m_currentPage, wish);
    const PageCache::Picture shown = m_pictures.picture(*m_currentPage);
    if (!m_autoScales || !(shown.shows == wish) || shown.isRendererBroken)
        return;
    for (const qsizetype neighbour : {*m_currentPage - 1, *m_currentPage + 1}) {
        const std::optional<PDFPage> page = m_document->page(neighbour);
        if (!page)
            continue;
        const Rect box = page->bounds(DisplayBox::cropBox);
        const double scale = PageGeometry::fittingScale(box, viewSize(), pageMargin);
        const QSize size = PageGeometry(box, {viewSize(), devicePixelRatioF()}, scale).pixelSize();
        m_pictures.request(neighbour, {size, QRect(QPoint(0, 0), size)});
    }
}

void PDFView::paintPage(QPainter& painter, const PageGeometry& geometry) const {
    const QRectF frame = toQt(geometry.frame(), height());
    painter.fillRect(frame, Qt::white);
    const PageCache::Picture picture = m_pictures.picture(*m_currentPage);
    if (picture.isUnavailable) {
        painter.setPen(Qt::darkGray);
        painter.drawText(frame, Qt::AlignCenter | Qt::TextWordWrap, noticeFor(picture));
        return;
    }
    if (picture.pixmap.isNull())
        return;
    // Where the picture lies on the page, as it is scaled now; exactly pixel for pixel where it was made for
    // this scale.
    const double sx = frame.width() / picture.shows.fullSize.width();
    const double sy = frame.height() / picture.shows.fullSize.height();
    const QRectF part(picture.shows.part);
    const QRectF target(frame.x() + part.x() * sx, frame.y() + part.y() * sy, part.width() * sx,
                        part.height() * sy);
    painter.setRenderHint(QPainter::SmoothPixmapTransform, picture.shows.fullSize != geometry.pixelSize());
    painter.drawPixmap(target, picture.pixmap, QRectF(picture.pixmap.rect()));
}

void PDFView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), m_backgroundColor);
    const auto geometry = geometryOfPage();
    if (geometry)
        paintPage(painter, *geometry);
    paintFocus(painter);
    if (geometry)
        requestPictures(*geometry);
}

void PDFView::paintFocus(QPainter& painter) const {
    if (!m_keyboardFocus.isShown())
        return;
    constexpr double inset = focusLineWidth / 2;
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(colors::systemBlue, focusLineWidth, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
    painter.drawRect(QRectF(rect()).adjusted(inset, inset, -inset, -inset));
}

void PDFView::focusInEvent(QFocusEvent* event) {
    m_keyboardFocus.focusIn(*event);
    update();
}

void PDFView::focusOutEvent(QFocusEvent* event) {
    m_keyboardFocus.focusOut(*event);
    update();
}

void PDFView::resizeEvent(QResizeEvent*) {
    m_offset = clampedOffset(m_offset);
    followLayout();
    Q_EMIT scaleChanged();
}

}  // namespace vellmora
