#pragma once

#include "library/StampPreset.h"
#include "platform/image/PictureSource.h"

#include <functional>
#include <optional>

#include <QList>
#include <QUuid>

namespace vellmora {

/// The part of the sidebar that follows the workspace; cheap, so that it can change with every step of a
/// drag.
struct WorkspaceFigures {
    QString pageDisplayText;
    qsizetype totalStampCount = 0;
    qsizetype currentPageStampCount = 0;
    bool hasDocument = false;
    bool operator==(const WorkspaceFigures&) const = default;
};

/// The part that follows the library.
struct LibraryContent {
    QList<StampPreset> presets;
    QList<StampPreset> recentPresets;
    std::optional<StampPreset> selectedPreset;
    std::optional<QUuid> selectedPresetID;
};

struct SidebarCallbacks {
    std::function<void(const StampPreset&)> onSelect;
    std::function<void(const StampPreset&)> onInsert;
    std::function<void(const StampPreset&)> onDelete;
    std::function<void()> onImport;
    std::function<PictureSource(const StampPreset&)> pictureOf;
};

}  // namespace vellmora
