#pragma once

#include "library/StampPreset.h"
#include "platform/image/Image.h"
#include "ui/Theme.h"

#include <functional>
#include <optional>

#include <QHash>
#include <QIcon>
#include <QListWidget>

namespace vellmora {

/// The library's entries with picture and name. A click selects an entry, a double click inserts it.
class LibraryList : public QListWidget {
    Q_OBJECT

public:
    struct Data {
        QList<StampPreset> presets;
        std::optional<QUuid> selectedPresetID;
        bool operator==(const Data&) const = default;
    };
    struct Callbacks {
        std::function<void(const QUuid&)> onSelect;
        std::function<void(const StampPreset&)> onInsert;
        std::function<std::optional<Image>(const StampPreset&)> image;
    };

    LibraryList(Callbacks callbacks, const Theme& theme, QWidget* parent);

    void setData(const Data& newData);

private:
    void rebuild();
    QIcon iconOf(const StampPreset& preset);
    const StampPreset& presetOf(const QListWidgetItem* item) const { return m_data.presets[row(item)]; }

    Callbacks m_callbacks;
    Data m_data;
    QHash<QUuid, QIcon> m_icons;
};

}  // namespace vellmora
