#include "ui/Sidebar.h"

#include "ui/RoundedRect.h"

#include <QApplication>
#include <QCursor>
#include <QMoveEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyleOptionSlider>
#include <QVBoxLayout>

namespace vellmora {

namespace {

/// A scroll bar without arrows and groove: a rounded handle on the ground of the sidebar.
class ThinScrollBar : public QScrollBar {
public:
    explicit ThinScrollBar(QWidget* parent) : QScrollBar(Qt::Vertical, parent) { setFixedWidth(thickness); }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.fillRect(rect(), Theme::controlBackground(palette()));
        const double opacity = isSliderDown() || underMouse() ? activeHandleOpacity : handleOpacity;
        constexpr double radius = (thickness - 2 * handleInset) / 2.0;
        fillRoundedRect(painter, handle(), radius, Theme::withOpacity(Theme::text(palette()), opacity));
    }

private:
    /// A little within the area in which the style lets the handle be dragged.
    QRect handle() const {
        QStyleOptionSlider option;
        initStyleOption(&option);
        const QRect slider =
            style()->subControlRect(QStyle::CC_ScrollBar, &option, QStyle::SC_ScrollBarSlider, this);
        return slider.adjusted(handleInset, handleInset, -handleInset, -handleInset);
    }

    static constexpr int thickness = 12;
    static_assert(thickness <= Sidebar::padding, "the boxes are of one width with the bar and without it");
    static constexpr int handleInset = 3;
    static constexpr double handleOpacity = 0.3;
    static constexpr double activeHandleOpacity = 0.5;
};

}  // namespace

Sidebar::Sidebar(const SidebarCallbacks& callbacks, const Theme& theme, QWidget* parent)
    : QScrollArea(parent),
      m_thumbnails(new Thumbnails(this)),
      m_column(new QWidget(this)),
      m_statistics(new StatisticsBox(theme, m_column)),
      m_active(new ActiveStampBox(callbacks, *m_thumbnails, theme, m_column)),
      m_recents(new RecentsBox(callbacks, *m_thumbnails, theme, m_column)),
      m_library(new LibraryBox(callbacks, *m_thumbnails, theme, m_column)) {
    setFixedWidth(columnWidth);
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBar(new ThinScrollBar(this));
    setFocusPolicy(Qt::NoFocus);

    auto* stack = new QVBoxLayout(m_column);
    stack->setContentsMargins(padding, padding, 0, padding);
    stack->setSpacing(boxSpacing);
    auto* guide = new GuideBox(theme, m_column);
    for (QWidget* box :
         std::initializer_list<QWidget*>{m_statistics, m_active, m_recents, m_library, guide}) {
        box->setFixedWidth(columnWidth - 2 * padding);
        box->installEventFilter(this);
        stack->addWidget(box);
    }
    m_recents->followInTabOrder(m_active->lastButton());
    m_library->setBoxWidth(columnWidth - 2 * padding);
    stack->addStretch();
    setWidget(m_column);
    setWidgetResizable(true);
    m_library->grid().installEventFilter(this);
    connect(verticalScrollBar(), &QScrollBar::valueChanged, this, &Sidebar::showTilesInSight);
    // While the window goes away, the column is there as long as anything that has the focus.
    connect(qApp, &QApplication::focusChanged, m_column,
            [this](const QWidget* before, QWidget* now) { scrollToFocus(before, now); });
    // Once the boxes above the grid have their places.
    connect(
        &m_library->grid(), &PresetGrid::focusedTileMoved, this,
        [this](const QPointer<QWidget>& tile) {
            if (tile)
                ensureWidgetVisible(tile);
        },
        Qt::QueuedConnection);
    applyPalette();
}

void Sidebar::applyPalette() {
    QPalette ground;
    ground.setColor(QPalette::Window, Theme::controlBackground(QPalette()));
    viewport()->setPalette(ground);
    viewport()->setAutoFillBackground(true);
}

void Sidebar::changeEvent(QEvent* event) {
    QScrollArea::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        applyPalette();
}

void Sidebar::resizeEvent(QResizeEvent* event) {
    QScrollArea::resizeEvent(event);
    showTilesInSight();
}

bool Sidebar::eventFilter(QObject* watched, QEvent* event) {
    const bool isGrid = watched == &m_library->grid();
    if (isGrid && (event->type() == QEvent::Move || event->type() == QEvent::Resize))
        QMetaObject::invokeMethod(this, &Sidebar::showTilesInSight, Qt::QueuedConnection);
    else if (watched->parent() == m_column && event->type() == QEvent::Move)
        keepUnderMouse(*qobject_cast<QWidget*>(watched), *static_cast<QMoveEvent*>(event));
    return QScrollArea::eventFilter(watched, event);
}

/// Scrolls by as much as the box moved. A click may make a box above grow, and the second click of a double
/// click must meet the same tile as the first.
void Sidebar::keepUnderMouse(const QWidget& box, const QMoveEvent& move) {
    // Where the mouse is the display is asked for, which has much else to do while the window comes.
    if (!window()->underMouse())
        return;
    const QPoint mouse = viewport()->mapFromGlobal(QCursor::pos());
    const QRect before(m_column->mapTo(viewport(), move.oldPos()), box.size());
    if (viewport()->rect().contains(mouse) && before.contains(mouse))
        verticalScrollBar()->setValue(verticalScrollBar()->value() + move.pos().y() - move.oldPos().y());
}

void Sidebar::showTilesInSight() {
    PresetGrid& grid = m_library->grid();
    const int top = grid.mapFrom(viewport(), QPoint(0, 0)).y();
    grid.setVisibleSpan(top, top + viewport()->height());
}

/// Qt does this only for a focus that comes from another control of the sidebar. What is clicked stays under
/// the mouse, and a window that becomes active again stays as it was.
void Sidebar::scrollToFocus(const QWidget* before, QWidget* now) {
    const bool isClick = QGuiApplication::mouseButtons() != Qt::NoButton;
    if (before && now && !isClick && m_column->isAncestorOf(now))
        ensureWidgetVisible(now, 0, padding);
}

void Sidebar::setFigures(const WorkspaceFigures& figures) {
    if (figures == m_figures)
        return;
    m_figures = figures;
    m_statistics->setFigures(figures);
    m_active->setHasDocument(figures.hasDocument);
}

void Sidebar::setLibrary(const LibraryContent& library) {
    m_statistics->setLibraryCount(library.presets.size());
    m_active->setPreset(library.selectedPreset);
    m_recents->setPresets(library.recentPresets, library.selectedPresetID);
    m_library->setPresets(library.presets, library.selectedPresetID);
}

}  // namespace vellmora
