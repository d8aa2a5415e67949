#pragma once

#include "ui/GroupBox.h"
#include "ui/PresetRow.h"
#include "ui/SidebarData.h"

namespace vellmora {

/// The recently used stamps, a row each. Not there at all where there are none.
class RecentsBox : public GroupBox {
    Q_OBJECT

public:
    RecentsBox(SidebarCallbacks callbacks, Thumbnails& thumbnails, Theme theme, QWidget* parent);

    void setPresets(const QList<StampPreset>& presets, const std::optional<QUuid>& selectedPresetID);

private:
    SidebarCallbacks m_callbacks;
    Thumbnails& m_thumbnails;
    Theme m_theme;
    QList<PresetRow*> m_rows;
};

}  // namespace vellmora
