#include "preview/PageScrollBars.h"

#include <QPainter>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QStyleOptionSlider>
#include <QWheelEvent>
#include <QWidget>

namespace vellmora {

namespace {

constexpr int thickness = 12;
constexpr double handleInset = 3;
constexpr int stepDistance = 40;  // view points
constexpr double leastRange = 0.5;

/// Can be seen on the black ground of the view and on paper: 5 : 1 and 4 : 1.
constexpr QColor handleColor(0x80, 0x80, 0x80);
constexpr QColor activeHandleColor(0x9a, 0x9a, 0x9a);

/// A rounded handle, and nothing else of a scroll bar. The wheel is the page view's.
class OverlayScrollBar : public QScrollBar {
public:
    OverlayScrollBar(Qt::Orientation orientation, const QString& name, QWidget* view)
        : QScrollBar(orientation, view) {
        setAccessibleName(name);
        setCursor(Qt::ArrowCursor);
        setAttribute(Qt::WA_OpaquePaintEvent, false);
        setSingleStep(stepDistance);
        hide();
    }

protected:
    void wheelEvent(QWheelEvent* event) override { event->ignore(); }
    void paintEvent(QPaintEvent*) override {
        QStyleOptionSlider option;
        initStyleOption(&option);
        const QRectF slider =
            style()->subControlRect(QStyle::CC_ScrollBar, &option, QStyle::SC_ScrollBarSlider, this);
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(isSliderDown() || underMouse() ? activeHandleColor : handleColor);
        constexpr double radius = (thickness - 2 * handleInset) / 2;
        painter.drawRoundedRect(slider.adjusted(handleInset, handleInset, -handleInset, -handleInset), radius,
                                radius);
    }
};

/// `value` counts from the side to which `range` is negative.
void showIn(QScrollBar& bar, double value, double range, int viewLength) {
    const bool isNeeded = range > leastRange;
    if (isNeeded) {
        const QSignalBlocker quiet(bar);
        bar.setRange(0, qRound(2 * range));
        bar.setPageStep(viewLength);
        bar.setValue(qRound(value));
    }
    bar.setVisible(isNeeded);
}

}  // namespace

PageScrollBars::PageScrollBars(QWidget* view)
    : QObject(view),
      m_view(view),
      m_across(new OverlayScrollBar(Qt::Horizontal, QStringLiteral("Seite waagerecht verschieben"), view)),
      m_up(new OverlayScrollBar(Qt::Vertical, QStringLiteral("Seite senkrecht verschieben"), view)) {
    // A bar moves to the right and down where the page moves to the left and up.
    connect(m_across, &QScrollBar::valueChanged, this, [this](int value) {
        onScrolled({m_range.x - value, m_offset.y});
    });
    connect(m_up, &QScrollBar::valueChanged, this, [this](int value) {
        onScrolled({m_offset.x, value - m_range.y});
    });
}

void PageScrollBars::show(Point offset, Point range) {
    m_offset = offset;
    m_range = range;
    showIn(*m_across, range.x - offset.x, range.x, m_view->width());
    showIn(*m_up, offset.y + range.y, range.y, m_view->height());
    layOut();
}

/// Each leaves the corner to neither. What else lies on the view was perhaps made later.
void PageScrollBars::layOut() {
    const int width = m_view->width();
    const int height = m_view->height();
    if (!m_across->isHidden()) {
        m_across->setGeometry(0, height - thickness, width - thickness, thickness);
        m_across->raise();
    }
    if (!m_up->isHidden()) {
        m_up->setGeometry(width - thickness, 0, thickness, height - thickness);
        m_up->raise();
    }
}

}  // namespace vellmora
