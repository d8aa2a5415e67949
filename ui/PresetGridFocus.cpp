#include "ui/PresetGrid.h"

#include <algorithm>

#include <QKeyEvent>

namespace vellmora {

qsizetype PresetGrid::indexOf(const QUuid& id) const {
    const auto isIt = [&](const StampPreset& preset) { return preset.id == id; };
    const auto found = std::find_if(m_data.presets.begin(), m_data.presets.end(), isIt);
    return found == m_data.presets.end() ? -1 : found - m_data.presets.begin();
}

/// The entry that had the focus last, else the selected one, else the first. -1 without entries.
qsizetype PresetGrid::currentIndex() const {
    for (const QUuid& id : {m_current, m_data.selectedPresetID.value_or(QUuid())}) {
        const qsizetype index = id.isNull() ? -1 : indexOf(id);
        if (index >= 0)
            return index;
    }
    return m_data.presets.isEmpty() ? -1 : 0;
}

void PresetGrid::setCurrent(const QUuid& id) {
    if (m_current == id)
        return;
    m_current = id;
    updateTabStop();
}

/// Its place in the order of the Tab key is the grid's.
void PresetGrid::updateTabStop() {
    const qsizetype current = currentIndex();
    PresetTile* stop = current < 0 ? nullptr : tile(current);
    for (PresetTile* tile : std::as_const(m_tiles))
        tile->setFocusPolicy(Qt::ClickFocus);
    if (stop)
        stop->setFocusPolicy(Qt::StrongFocus);
    if (stop && m_before && m_before->nextInFocusChain() != stop)
        setTabOrder(m_before, stop);
}

/// Where the entry with the focus is gone, the one that took its place gets the focus, before the tile goes.
void PresetGrid::keepFocus(qsizetype before) {
    PresetTile* focused = m_tiles.value(m_current);
    if (!focused || indexOf(m_current) >= 0 || m_data.presets.isEmpty())
        return;
    const bool hasFocus = focused->hasFocus();
    m_current = m_data.presets[std::min(before, m_data.presets.size() - 1)].id;
    if (!hasFocus)
        return;
    const bool isByKey = focused->showsFocus();
    m_rows = layOutRows();
    place(indexOf(m_current), Refresh::allTiles);
    m_tiles.value(m_current)->setFocus(isByKey ? Qt::TabFocusReason : Qt::OtherFocusReason);
}

void PresetGrid::focusTile(qsizetype index) {
    m_current = m_data.presets[index].id;
    showTiles(Refresh::newTiles);
    tile(index)->setFocus(Qt::TabFocusReason);
}

bool PresetGrid::eventFilter(QObject* object, QEvent* event) {
    auto* tile = qobject_cast<PresetTile*>(object);
    if (tile && event->type() == QEvent::FocusIn)
        setCurrent(tile->preset().id);
    return QWidget::eventFilter(object, event);
}

/// The entry that a key leads to from another one; nothing for a key that leads nowhere.
std::optional<qsizetype> PresetGrid::afterKey(int key, qsizetype index) const {
    const qsizetype columns = columnCount();
    const qsizetype last = m_data.presets.size() - 1;
    const int rowHeight = tileArea(index).height() + spacing;
    const qsizetype page = columns * std::max(1, (m_visibleBottom - m_visibleTop) / rowHeight);
    const qsizetype column = index % columns;
    switch (key) {
        case Qt::Key_Left:
            return std::max<qsizetype>(index - 1, 0);
        case Qt::Key_Right:
            return std::min(index + 1, last);
        case Qt::Key_Up:
            return index < columns ? index : index - columns;
        case Qt::Key_Down:
            return index + columns > last ? index : index + columns;
        case Qt::Key_Home:
            return 0;
        case Qt::Key_End:
            return last;
        case Qt::Key_PageUp:
            return index < page ? column : index - page;
        case Qt::Key_PageDown:
            return std::min(index + page, last);
        default:
            return std::nullopt;
    }
}

void PresetGrid::keyPressEvent(QKeyEvent* event) {
    const PresetTile* focused = m_tiles.value(m_current);
    const std::optional<qsizetype> next =
        focused && focused->hasFocus() ? afterKey(event->key(), currentIndex()) : std::nullopt;
    if (next)
        focusTile(*next);
    else
        QWidget::keyPressEvent(event);
}

}  // namespace vellmora
