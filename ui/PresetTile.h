#pragma once

#include "ui/Button.h"
#include "ui/PictureView.h"
#include "ui/PresetItem.h"
#include "ui/TextLabel.h"

#include <QFontMetricsF>
#include <QHash>

namespace vellmora {

/// One cell of the library grid: picture, name, and buttons to insert and to delete. A double click inserts.
class PresetTile : public PresetItem {
    Q_OBJECT

public:
    PresetTile(const Callbacks& callbacks, Thumbnails& thumbnails, const Theme& theme, QWidget* parent);

    void setData(const Data& newData) override;

    /// Heights of tiles of one width. Each name is measured once.
    class Heights {
    public:
        Heights(int tileWidth, const Theme& theme);
        int tileWidth() const { return m_tileWidth; }
        int of(const StampPreset& preset);

    private:
        int linesOf(const QString& name);

        int m_tileWidth;
        QFontMetricsF m_nameMetrics;
        QHash<QString, int> m_nameLines;
        int m_nameLine;
        int m_badge;
    };

    Button& insertButton() { return *m_insert; }
    Button& deleteButton() { return *m_delete; }

protected:
    void mouseDoubleClickEvent(QMouseEvent* event) override;

private:
    PictureView* m_picture;
    TextLabel* m_name;
    TextLabel* m_badge;
    Button* m_insert;
    Button* m_delete;
};

}  // namespace vellmora
