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
/// library is.
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
    /// The part of the grid that is in sight, in the grid's own coordinates.
    void setVisibleSpan(int top, int bottom);

protected:
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    struct Row {
        int top;
        int height;
    };
    static int columnCount(int width);
    static int columnWidth(int width);
    QList<Row> layOutRows() const;
    void updateRows();
    enum class Refresh { newTiles, allTiles };
    void showTiles(Refresh refresh);
    void place(qsizetype index, Refresh refresh);
    void updateTabOrder(qsizetype first, qsizetype last);
    std::optional<qsizetype> focusedIndex() const;

    PresetItem::Callbacks m_callbacks;
    PictureOf m_pictureOf;
    Thumbnails& m_thumbnails;
    Theme m_theme;
    Data m_data;
    QList<Row> m_rows;
    int m_visibleTop = 0;
    int m_visibleBottom = 0;
    QHash<QUuid, PresetTile*> m_tiles;
};

}  // namespace vellmora
