#include "ui/PresetGrid.h"

#include <algorithm>
#include <utility>

#include <QKeyEvent>
#include <QSet>

namespace vellmora {

PresetGrid::PresetGrid(PresetItem::Callbacks callbacks, PictureOf pictureOf, Thumbnails& thumbnails,
                       Theme theme, QWidget* parent)
    : QWidget(parent),
      m_callbacks(std::move(callbacks)),
      m_pictureOf(std::move(pictureOf)),
      m_thumbnails(thumbnails),
      m_theme(std::move(theme)) {}

int PresetGrid::columnCount(int width) {
    return std::max(1, (width + spacing) / (minimumColumnWidth + spacing));
}

int PresetGrid::columnWidth(int width) {
    const int columns = columnCount(width);
    return (width - (columns - 1) * spacing) / columns;
}

/// A row is as high as its highest tile.
QList<PresetGrid::Row> PresetGrid::layOutRows() const {
    const int columns = columnCount(width());
    const PresetTile::Heights heights(columnWidth(width()), m_theme);
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
    setFixedHeight(m_rows.isEmpty() ? 0 : m_rows.last().top + m_rows.last().height);
    showTiles(Refresh::allTiles);
}

void PresetGrid::resizeEvent(QResizeEvent* event) {
    if (event->oldSize().width() != event->size().width())
        updateRows();
}

void PresetGrid::setData(const Data& newData) {
    const bool hasOtherPresets = newData.presets != m_data.presets;
    m_data = newData;
    if (hasOtherPresets)
        updateRows();
    else
        showTiles(Refresh::allTiles);
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
    const int columns = columnCount(width());
    const qsizetype first = std::max<qsizetype>(0, firstRow - m_rows.begin() - 1) * columns;
    const qsizetype last = std::min((lastRow - m_rows.begin() + 2) * columns, m_data.presets.size());

    QSet<QUuid> wanted;
    for (qsizetype i = first; i < last; ++i)
        wanted.insert(m_data.presets[i].id);
    QList<PresetTile*> unwanted;
    m_tiles.removeIf([&](const auto& entry) {
        if (wanted.contains(entry.key()))
            return false;
        unwanted.append(entry.value());
        return true;
    });
    for (qsizetype i = first; i < last; ++i)
        place(i, refresh);
    updateTabOrder(first, last);
    // Hiding a tile moves its focus to another tile, which is then scrolled into sight, and that calls this
    // function again. So it is done last.
    for (PresetTile* tile : unwanted) {
        tile->hide();
        tile->deleteLater();
    }
}

void PresetGrid::place(qsizetype index, Refresh refresh) {
    const StampPreset& preset = m_data.presets[index];
    PresetTile*& tile = m_tiles[preset.id];
    const bool isNew = !tile;
    if (isNew)
        tile = new PresetTile(m_callbacks, m_thumbnails, m_theme, this);
    if (isNew || refresh == Refresh::allTiles)
        tile->setData({preset, m_pictureOf(preset), m_data.selectedPresetID == preset.id});
    const int columns = columnCount(width());
    const int tileWidth = columnWidth(width());
    const Row& row = m_rows[index / columns];
    tile->setGeometry(static_cast<int>(index % columns) * (tileWidth + spacing), row.top, tileWidth,
                      row.height);
    if (isNew)
        tile->show();
}

void PresetGrid::updateTabOrder(qsizetype first, qsizetype last) {
    QWidget* previous = nullptr;
    for (qsizetype i = first; i < last; ++i) {
        PresetTile* tile = m_tiles.value(m_data.presets[i].id);
        if (previous)
            setTabOrder(previous, tile);
        setTabOrder(tile, &tile->insertButton());
        setTabOrder(&tile->insertButton(), &tile->deleteButton());
        previous = &tile->deleteButton();
    }
}

std::optional<qsizetype> PresetGrid::focusedIndex() const {
    for (qsizetype i = 0; i < m_data.presets.size(); ++i) {
        const PresetTile* tile = m_tiles.value(m_data.presets[i].id);
        if (tile && tile->hasFocus())
            return i;
    }
    return std::nullopt;
}

/// The arrow keys go from tile to tile.
void PresetGrid::keyPressEvent(QKeyEvent* event) {
    static const QHash<int, std::pair<int, int>> steps{
        {Qt::Key_Left, {-1, 0}}, {Qt::Key_Right, {1, 0}}, {Qt::Key_Up, {0, -1}}, {Qt::Key_Down, {0, 1}}};
    const auto step = steps.constFind(event->key());
    const auto focused = focusedIndex();
    if (step == steps.constEnd() || !focused)
        return QWidget::keyPressEvent(event);
    const qsizetype next = *focused + step->first + qsizetype{step->second} * columnCount(width());
    if (next < 0 || next >= m_data.presets.size())
        return;
    // The scroll area scrolls a tile that gets the focus into sight. The tiles around it are made then.
    if (PresetTile* tile = m_tiles.value(m_data.presets[next].id))
        tile->setFocus(Qt::TabFocusReason);
}

}  // namespace vellmora
