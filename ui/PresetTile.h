#pragma once

#include "ui/Button.h"
#include "ui/PictureView.h"
#include "ui/PresetItem.h"
#include "ui/TextLabel.h"

namespace vellmora {

/// One cell of the library grid: picture, name, and buttons to insert and to delete. A double click inserts.
class PresetTile : public PresetItem {
    Q_OBJECT

public:
    PresetTile(const Callbacks& callbacks, Thumbnails& thumbnails, const Theme& theme, QWidget* parent);

    void setData(const Data& newData) override;

    /// Heights of tiles of one width, quick enough for thousands of them.
    class Heights {
    public:
        Heights(int tileWidth, const Theme& theme);
        int of(const StampPreset& preset) const;

    private:
        TextFont m_nameFont;
        int m_nameWidth;
        int m_badge;
        int m_buttons;
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
