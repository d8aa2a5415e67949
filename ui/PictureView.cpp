#include "ui/PictureView.h"

#include "ui/RoundedRect.h"
#include "ui/Theme.h"

#include <QPainter>

namespace vellmora {

PictureView::PictureView(const Style& style, Thumbnails& thumbnails, QWidget* parent)
    : QWidget(parent), m_style(style), m_thumbnails(thumbnails) {
    setFixedHeight(style.frameHeight + 2 * style.padding);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    connect(&thumbnails, &Thumbnails::changed, this, &PictureView::thumbnailChanged);
}

void PictureView::setSource(const DeferredPicture& source) {
    if (source.version == m_source.version && !source.version.isEmpty())
        return;
    m_source = source;
    m_shown = {};
    update();
}

QSize PictureView::wantedPixels() const {
    const QSizeF frame(width() - 2 * m_style.padding, m_style.frameHeight);
    return (frame * devicePixelRatioF()).toSize();
}

void PictureView::thumbnailChanged(const QString& version) {
    if (version != m_source.version)
        return;
    update();
    if (onLoaded)
        onLoaded(isKnownToBeMissing(m_source));
}

void PictureView::showEvent(QShowEvent*) {
    // The picture may be loaded before the first paint.
    m_thumbnails.prepare(m_source, wantedPixels());
}

/// A little larger than the picture, and within the padding around it.
void PictureView::paintPaper(QPainter& painter, const QRectF& picture) const {
    const std::optional<QColor> paper = Theme::paperUnderPictures(palette());
    if (!paper)
        return;
    const double margin = m_style.padding / 2.0;
    painter.setBrush(*paper);
    painter.drawRoundedRect(picture.adjusted(-margin, -margin, margin, margin), margin, margin);
}

void PictureView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    fillRoundedRect(painter, rect(), m_style.radius, Theme::black(m_style.opacity));

    const QRectF frame =
        QRectF(rect()).adjusted(m_style.padding, m_style.padding, -m_style.padding, -m_style.padding);
    const Thumbnails::Thumbnail thumbnail = m_thumbnails.thumbnail(m_source, wantedPixels());
    if (thumbnail.state == Thumbnails::State::missing) {
        const double side = m_style.symbolSize;
        const QRectF square(frame.center() - QPointF(side, side) / 2, QSizeF(side, side));
        drawSymbol(painter, Symbol::photo, square, Theme::secondaryText(palette()));
        return;
    }
    const bool isExact = thumbnail.state == Thumbnails::State::ready;
    if (isExact)
        m_shown = thumbnail.picture;
    if (m_shown.isNull())
        return;
    // A picture that was made for this size is drawn pixel for pixel, so its corner must lie on a device
    // pixel.
    const double ratio = devicePixelRatioF();
    const QSizeF pixels(m_shown.size());
    const QSizeF size = isExact ? pixels / ratio : pixels.scaled(frame.size(), Qt::KeepAspectRatio);
    const QPointF offset =
        frame.topLeft() + QPointF(frame.width() - size.width(), frame.height() - size.height()) / 2;
    const QPointF snapped(qRound(offset.x() * ratio) / ratio, qRound(offset.y() * ratio) / ratio);
    paintPaper(painter, QRectF(snapped, size));
    painter.setRenderHint(QPainter::SmoothPixmapTransform, !isExact);
    painter.drawPixmap(QRectF(snapped, size), m_shown, QRectF(m_shown.rect()));
}

}  // namespace vellmora
