#pragma once

#include "ui/GroupBox.h"
#include "ui/PresetGrid.h"
#include "ui/SidebarData.h"
#include "ui/TextLabel.h"

namespace vellmora {

/// The stamp library: a button to add to it, and its entries as a grid of tiles.
class LibraryBox : public GroupBox {
    Q_OBJECT

public:
    LibraryBox(const SidebarCallbacks& callbacks, Thumbnails& thumbnails, const Theme& theme,
               QWidget* parent);

    void setPresets(const QList<StampPreset>& presets, const std::optional<QUuid>& selectedPresetID);
    PresetGrid& grid() { return *m_grid; }

    /// Width of the whole box; to be set before its presets.
    void setBoxWidth(int width);

private:
    TextLabel* m_emptyText;
    PresetGrid* m_grid;
};

}  // namespace vellmora
