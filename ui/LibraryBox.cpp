#include "ui/LibraryBox.h"

#include "ui/Button.h"

#include <QHBoxLayout>

namespace vellmora {

namespace {

constexpr double hintSize = 11;
constexpr double emptyTextSize = 12;

}  // namespace

LibraryBox::LibraryBox(const SidebarCallbacks& callbacks, Thumbnails& thumbnails, const Theme& theme,
                       QWidget* parent)
    : GroupBox(QStringLiteral("Stempelbibliothek"), theme, parent),
      m_emptyText(new TextLabel(QStringLiteral("Noch keine Stempel in der Bibliothek."),
                                theme.font(emptyTextSize), Theme::secondaryText, this)),
      m_grid(new PresetGrid({callbacks.onSelect, callbacks.onInsert, callbacks.onDelete}, callbacks.pictureOf,
                            thumbnails, theme, this)) {
    auto* add = new Button(QStringLiteral("PNG hinzufügen"), Button::Look::bordered, Button::Size::regular,
                           theme, this);
    connect(add, &Button::clicked, this, callbacks.onImport);
    auto* row = new QHBoxLayout;
    row->addWidget(add);
    row->addStretch();
    row->addWidget(new TextLabel(QStringLiteral("Doppelklick = direkt einfügen"), theme.font(hintSize),
                                 Theme::secondaryText, this));
    content().addLayout(row);
    content().addWidget(m_emptyText);
    m_grid->setAccessibleName(QStringLiteral("Stempel der Bibliothek"));
    content().addWidget(m_grid);
}

void LibraryBox::setBoxWidth(int width) {
    setFixedWidth(width);
    m_grid->setFixedWidth(width - 2 * padding);
    m_grid->resize(m_grid->minimumWidth(), m_grid->height());
}

void LibraryBox::setPresets(const QList<StampPreset>& presets, const std::optional<QUuid>& selectedPresetID) {
    m_emptyText->setVisible(presets.isEmpty());
    m_grid->setVisible(!presets.isEmpty());
    m_grid->setData({presets, selectedPresetID});
}

}  // namespace vellmora
