#pragma once

#include "ui/PresetTile.h"

#include <functional>
#include <optional>

#include <QHash>
#include <QList>
#include <QWidget>

namespace vellmora {

/// The library as a grid of tiles. It has as many columns as fit, all of one width, which is at least 120
/// points. Widgets exist only for the tiles in sight and one more row on either side, however large the
/// library is, and for the current one.
///
/// The Tab key leads to the current entry alone; arrow keys, Home, End and the page keys go on from there.
/// While the pointer rests on the grid, its entries keep their order.
class PresetGrid : public QWidget {
    Q_OBJECT

public:
    static constexpr int minimumColumnWidth = 120;
    static constexpr int spacing = 10;

    struct Data {
        QList<StampPreset> presets;
        std::optional<QUuid> selectedPresetID;
    };
    using PictureOf = std::function<DeferredPicture(const StampPreset&)>;

    PresetGrid(PresetItem::Callbacks callbacks, PictureOf pictureOf, Thumbnails& thumbnails, Theme theme,
               QWidget* parent);

    void setData(const Data& newData);
    /// The Tab key leads to the grid from this widget, which is not in it.
    void followInTabOrder(QWidget& before) { m_before = &before; }
    /// The part of the grid that is in sight, in the grid's own coordinates.
    void setVisibleSpan(int top, int bottom);

    /// The entries in the order in which they are shown.
    const QList<StampPreset>& presets() const { return m_data.presets; }
    bool isSelected(qsizetype index) const { return m_data.selectedPresetID == m_data.presets[index].id; }
    const PresetItem::Callbacks& callbacks() const { return m_callbacks; }
    /// The entry's tile; null for one out of sight.
    PresetTile* tile(qsizetype index) const { return m_tiles.value(m_data.presets[index].id); }
    /// Where the entry's tile is, or would be.
    QRect tileArea(qsizetype index) const;
    /// -1 for an entry that is not shown.
    qsizetype indexOf(const QUuid& id) const;

    /// Gives the focus to the entry's tile, as the Tab key would.
    void focusTile(qsizetype index);

Q_SIGNALS:
    /// The tile with the focus, which the keyboard moved there, lies at another place now.
    void focusedTileMoved(QWidget* tile);

protected:
    void resizeEvent(QResizeEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    bool eventFilter(QObject* tile, QEvent* event) override;

private:
    struct Row {
        int top;
        int height;
    };
    int columnCount() const;
    int columnWidth() const;
    QList<Row> layOutRows() const;
    void updateRows();
    void showEntries(const Data& newData);
    enum class Refresh { newTiles, allTiles };
    void showTiles(Refresh refresh);
    void place(qsizetype index, Refresh refresh);
    void followPointer();

    qsizetype currentIndex() const;
    void setCurrent(const QUuid& id);
    void updateTabStop();
    void keepFocus(qsizetype before);
    std::optional<qsizetype> afterKey(int key, qsizetype index) const;

    PresetItem::Callbacks m_callbacks;
    PictureOf m_pictureOf;
    Thumbnails& m_thumbnails;
    Theme m_theme;
    Data m_data;
    std::optional<Data> m_awaited;  ///< shown when the pointer has left the grid
    QList<Row> m_rows;
    int m_widthOfRows = -1;
    int m_visibleTop = 0;
    int m_visibleBottom = 0;
    QHash<QUuid, PresetTile*> m_tiles;
    QWidget* m_before = nullptr;
    QUuid m_current;  ///< the entry that had the focus last
};

}  // namespace vellmora
