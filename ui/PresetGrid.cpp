#include "ui/PresetGrid.h"

#include "ui/ShownOrder.h"

#include <algorithm>
#include <utility>

#include <QAccessible>
#include <QApplication>
#include <QCursor>
#include <QSet>

namespace vellmora {

PresetGrid::PresetGrid(PresetItem::Callbacks callbacks, PictureOf pictureOf, Thumbnails& thumbnails,
                       Theme theme, QWidget* parent)
    : QWidget(parent),
      m_callbacks(std::move(callbacks)),
      m_pictureOf(std::move(pictureOf)),
      m_thumbnails(thumbnails),
      m_theme(std::move(theme)) {}

int PresetGrid::columnCount() const {
    return std::max(1, (width() + spacing) / (m_theme.scaled(minimumColumnWidth) + spacing));
}

int PresetGrid::columnWidth() const {
    const int columns = columnCount();
    return (width() - (columns - 1) * spacing) / columns;
}

/// A row is as high as its highest tile.
QList<PresetGrid::Row> PresetGrid::layOutRows() const {
    const int columns = columnCount();
    const PresetTile::Heights heights(columnWidth(), m_theme);
    QList<Row> rows;
    int top = 0;
    for (qsizetype first = 0; first < m_data.presets.size(); first += columns) {
        int height = 0;
        const qsizetype end = std::min(first + columns, m_data.presets.size());
        for (qsizetype i = first; i < end; ++i)
            height = std::max(height, heights.of(m_data.presets[i]));
        rows.append({top, height});
        top += height + spacing;
    }
    return rows;
}

void PresetGrid::updateRows() {
    m_rows = layOutRows();
    m_widthOfRows = width();
    setFixedHeight(m_rows.isEmpty() ? 0 : m_rows.last().top + m_rows.last().height);
    showTiles(Refresh::allTiles);
    if (!QAccessible::isActive())
        return;
    QAccessibleEvent event(this, QAccessible::ObjectReorder);
    QAccessible::updateAccessibility(&event);
}

/// Qt tells of the first size, too, for which the rows may be there.
void PresetGrid::resizeEvent(QResizeEvent*) {
    if (width() != m_widthOfRows)
        updateRows();
}

void PresetGrid::leaveEvent(QEvent*) {
    if (m_awaited)
        showEntries(*std::exchange(m_awaited, std::nullopt));
}

void PresetGrid::setData(const Data& newData) {
    m_awaited.reset();
    if (!underMouse())
        return showEntries(newData);
    const Data now{inShownOrder(newData.presets, m_data.presets), newData.selectedPresetID};
    if (now.presets != newData.presets)
        m_awaited = newData;
    showEntries(now);
}

void PresetGrid::showEntries(const Data& newData) {
    const bool hasOtherPresets = newData.presets != m_data.presets;
    const qsizetype current = currentIndex();
    m_data = newData;
    if (!hasOtherPresets)
        return showTiles(Refresh::allTiles);
    keepFocus(current);
    updateRows();
    PresetTile* focused = m_tiles.value(m_current);
    if (focused && focused->hasFocus() && focused->showsFocus())
        Q_EMIT focusedTileMoved(focused);
}

void PresetGrid::setVisibleSpan(int top, int bottom) {
    m_visibleTop = top;
    m_visibleBottom = bottom;
    showTiles(Refresh::newTiles);
}

void PresetGrid::showTiles(Refresh refresh) {
    const auto isBefore = [](const Row& row, int y) { return row.top + row.height < y; };
    const auto firstRow = std::lower_bound(m_rows.begin(), m_rows.end(), m_visibleTop, isBefore);
    const auto lastRow = std::lower_bound(m_rows.begin(), m_rows.end(), m_visibleBottom, isBefore);
    const int columns = columnCount();
    const qsizetype first = std::max<qsizetype>(0, firstRow - m_rows.begin() - 1) * columns;
    const qsizetype last = std::min((lastRow - m_rows.begin() + 2) * columns, m_data.presets.size());
    const qsizetype current = currentIndex();
    const bool isCurrentApart = current >= 0 && (current < first || current >= last);

    QSet<QUuid> wanted;
    for (qsizetype i = first; i < last; ++i)
        wanted.insert(m_data.presets[i].id);
    if (isCurrentApart)
        wanted.insert(m_data.presets[current].id);
    QList<PresetTile*> unwanted;
    m_tiles.removeIf([&](const auto& entry) {
        if (wanted.contains(entry.key()))
            return false;
        unwanted.append(entry.value());
        return true;
    });
    for (qsizetype i = first; i < last; ++i)
        place(i, refresh);
    if (isCurrentApart)
        place(current, refresh);
    updateTabStop();
    // Hiding a tile that has the focus moves that on, something may be scrolled into sight then, and that
    // calls this function again. So it is done last.
    for (PresetTile* tile : unwanted) {
        tile->hide();
        tile->deleteLater();
    }
    followPointer();
}

QRect PresetGrid::tileArea(qsizetype index) const {
    const int columns = columnCount();
    const int width = columnWidth();
    const Row& row = m_rows[index / columns];
    return {static_cast<int>(index % columns) * (width + spacing), row.top, width, row.height};
}

void PresetGrid::place(qsizetype index, Refresh refresh) {
    const StampPreset& preset = m_data.presets[index];
    PresetTile*& tile = m_tiles[preset.id];
    const bool isNew = !tile;
    if (isNew) {
        tile = new PresetTile(m_callbacks, m_thumbnails, m_theme, this);
        tile->installEventFilter(this);
    }
    if (isNew || refresh == Refresh::allTiles)
        tile->setData({preset, m_pictureOf(preset), isSelected(index)});
    tile->setGeometry(tileArea(index));
    if (isNew)
        tile->show();
}

/// Qt tells a widget that the pointer is over it when the pointer moves, not when the widget does.
void PresetGrid::followPointer() {
    if (!window()->underMouse())
        return;
    const QWidget* under = QApplication::widgetAt(QCursor::pos());
    for (auto* button : findChildren<Button*>()) {
        const bool isUnder = button == under;
        if (button->underMouse() == isUnder)
            continue;
        button->setAttribute(Qt::WA_UnderMouse, isUnder);
        button->update();
    }
}

}  // namespace vellmora
