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

    /// Height of a tile that is `width` wide.
    static int heightFor(const StampPreset& preset, int width, const Theme& theme);

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
