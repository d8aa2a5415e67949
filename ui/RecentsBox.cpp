#include "ui/RecentsBox.h"

#include <utility>

namespace vellmora {

namespace {

constexpr int rowSpacing = 6;

}

RecentsBox::RecentsBox(SidebarCallbacks callbacks, Thumbnails& thumbnails, Theme theme, QWidget* parent)
    : GroupBox(QStringLiteral("Zuletzt verwendet"), theme, parent),
      m_callbacks(std::move(callbacks)),
      m_thumbnails(thumbnails),
      m_theme(std::move(theme)) {
    content().setSpacing(rowSpacing);
}

void RecentsBox::setPresets(const QList<StampPreset>& presets, const std::optional<QUuid>& selectedPresetID) {
    setVisible(!presets.isEmpty());
    while (m_rows.size() > presets.size())
        delete m_rows.takeLast();
    while (m_rows.size() < presets.size()) {
        auto* row =
            new PresetRow({m_callbacks.onSelect, m_callbacks.onInsert, {}}, m_thumbnails, m_theme, this);
        content().addWidget(row);
        m_rows.append(row);
    }
    for (qsizetype i = 0; i < presets.size(); ++i)
        m_rows[i]->setData(
            {presets[i], m_callbacks.pictureOf(presets[i]), presets[i].id == selectedPresetID});
}

}  // namespace vellmora
