#include "ui/LibraryList.h"

#include <algorithm>
#include <utility>

#include <QPixmap>
#include <QSignalBlocker>

namespace vellmora {

namespace {

constexpr QSize pictureSize{120, 44};

}  // namespace

LibraryList::LibraryList(Callbacks callbacks, const Theme& theme, QWidget* parent)
    : QListWidget(parent), m_callbacks(std::move(callbacks)) {
    setFont(theme.font(Theme::controlTextSize));
    setIconSize(pictureSize);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setAccessibleName(QStringLiteral("Stempelbibliothek"));
    connect(this, &QListWidget::itemClicked, this,
            [this](const QListWidgetItem* item) { m_callbacks.onSelect(presetOf(item).id); });
    connect(this, &QListWidget::itemDoubleClicked, this,
            [this](const QListWidgetItem* item) { m_callbacks.onInsert(presetOf(item)); });
}

QIcon LibraryList::iconOf(const StampPreset& preset) {
    const auto known = m_icons.constFind(preset.id);
    if (known != m_icons.constEnd())
        return *known;
    const std::optional<Image> image = m_callbacks.image(preset);
    QIcon icon;
    if (image) {
        const QSize size = pictureSize * devicePixelRatioF();
        QPixmap picture =
            QPixmap::fromImage(image->pixels().scaled(size, Qt::KeepAspectRatio, Qt::SmoothTransformation));
        picture.setDevicePixelRatio(devicePixelRatioF());
        icon.addPixmap(picture, QIcon::Normal);
        icon.addPixmap(picture, QIcon::Selected);
    }
    m_icons.insert(preset.id, icon);
    return icon;
}

void LibraryList::rebuild() {
    clear();
    for (const StampPreset& preset : m_data.presets)
        addItem(new QListWidgetItem(iconOf(preset), preset.displayName));
}

void LibraryList::setData(const Data& newData) {
    if (newData == m_data)
        return;
    const QSignalBlocker silent(this);
    const bool hasOtherPresets = newData.presets != m_data.presets;
    m_data = newData;
    if (hasOtherPresets)
        rebuild();
    const auto selected = std::find_if(m_data.presets.begin(), m_data.presets.end(),
                                       [&](const auto& p) { return p.id == m_data.selectedPresetID; });
    setCurrentRow(selected == m_data.presets.end() ? -1 : int(selected - m_data.presets.begin()));
}

}  // namespace vellmora
