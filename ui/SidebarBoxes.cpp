#include "ui/SidebarBoxes.h"

#include "ui/Button.h"
#include "ui/RoundedRect.h"
#include "ui/ShownOrder.h"

#include <utility>

#include <QHBoxLayout>
#include <QPaintEvent>
#include <QPainter>

namespace vellmora {

namespace {

constexpr int titleHeight = 18;
constexpr int titleGap = 4;
constexpr double frameRadius = 10;
constexpr double titleTextSize = 12;

constexpr double textSize = 12;
constexpr double smallTextSize = 11;
constexpr int recentsSpacing = 6;
constexpr int guideSpacing = 8;

}  // namespace

GroupBox::GroupBox(QString title, const Theme& theme, QWidget* parent)
    : QWidget(parent),
      m_title(std::move(title)),
      m_titleFont(theme.font(titleTextSize, Theme::semibold)),
      m_titleHeight(theme.scaled(titleHeight)),
      m_content(new QVBoxLayout(this)) {
    setAccessibleName(m_title);
    m_content->setContentsMargins(padding, m_titleHeight + titleGap + padding, padding, padding);
    m_content->setSpacing(itemSpacing);
}

void GroupBox::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    painter.setClipRect(event->rect());  // the library's box may have thousands of rows
    painter.setPen(Theme::text(palette()));
    m_titleFont.paint(painter, QRect(2, 0, width(), m_titleHeight), Qt::AlignLeft | Qt::AlignVCenter,
                      m_title);
    const int top = m_titleHeight + titleGap;
    const QRect frame(0, top, width(), height() - top);
    fillRoundedRect(painter, frame, frameRadius, Theme::divider(palette()));
    fillRoundedRect(painter, frame.adjusted(1, 1, -1, -1), frameRadius - 1, Theme::boxBackground(palette()));
}

StatisticsBox::StatisticsBox(const Theme& theme, QWidget* parent)
    : GroupBox(QStringLiteral("Vellmora"), theme, parent),
      m_page(addRow(QStringLiteral("Seite"), theme)),
      m_total(addRow(QStringLiteral("Stempel gesamt"), theme)),
      m_onPage(addRow(QStringLiteral("Aktuelle Seite"), theme)),
      m_library(addRow(QStringLiteral("Bibliothek"), theme)) {
    addRow(QStringLiteral("Speicherort"), theme)->setText(QStringLiteral("Application Support"));
}

/// The title on the left and the value on the right. The font's figures are all of one width. A screen reader
/// says which title belongs to which value.
TextLabel* StatisticsBox::addRow(const QString& title, const Theme& theme) {
    const TextFont font = theme.font(textSize, Theme::medium);
    auto* row = new QHBoxLayout;
    auto* name = new TextLabel(title, font, Theme::secondaryText, this);
    auto* value = new TextLabel({}, font, Theme::text, this);
    value->setMaximumLines(1);
    value->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    name->setBuddy(value);
    row->addWidget(name);
    row->addWidget(value, 1);
    content().addLayout(row);
    return value;
}

void StatisticsBox::setFigures(const WorkspaceFigures& figures) {
    m_page->setText(figures.pageDisplayText);
    m_total->setText(QString::number(figures.totalStampCount));
    m_onPage->setText(QString::number(figures.currentPageStampCount));
}

void StatisticsBox::setLibraryCount(qsizetype count) {
    m_library->setText(QString::number(count));
}

RecentsBox::RecentsBox(SidebarCallbacks callbacks, Thumbnails& thumbnails, Theme theme, QWidget* parent)
    : GroupBox(QStringLiteral("Zuletzt verwendet"), theme, parent),
      m_callbacks(std::move(callbacks)),
      m_thumbnails(thumbnails),
      m_theme(std::move(theme)) {
    content().setSpacing(recentsSpacing);
}

/// The row that shows the preset, taken from the list; else null.
static PresetRow* takeRowOf(const StampPreset& preset, QList<PresetRow*>& rows) {
    for (PresetRow*& row : rows) {
        if (row && row->preset().id == preset.id)
            return std::exchange(row, nullptr);
    }
    return nullptr;
}

/// A row for each preset. One that is shown already keeps its row, and with it the focus.
void RecentsBox::arrangeRows() {
    QList<PresetRow*> rows;
    for (const StampPreset& preset : std::as_const(m_shown)) {
        PresetRow* row = takeRowOf(preset, m_rows);
        rows.append(row ? row
                        : new PresetRow({m_callbacks.onSelect, m_callbacks.onInsert, {}}, m_thumbnails,
                                        m_theme, this));
    }
    qDeleteAll(m_rows);
    m_rows = rows;
    // The Tab key goes through them from the top.
    QWidget* previous = m_before;
    for (PresetRow* row : std::as_const(m_rows)) {
        content().removeWidget(row);
        content().addWidget(row);
        if (previous)
            setTabOrder(previous, row);
        setTabOrder(row, &row->insertButton());
        previous = &row->insertButton();
    }
}

void RecentsBox::setPresets(const QList<StampPreset>& presets, const std::optional<QUuid>& selectedPresetID) {
    m_presets = presets;
    m_selectedPresetID = selectedPresetID;
    const QList<StampPreset> shown = underMouse() ? inShownOrder(presets, m_shown) : presets;
    const bool isSame = shown == m_shown;
    m_shown = shown;
    setVisible(!presets.isEmpty());
    if (!isSame)
        arrangeRows();
    for (qsizetype i = 0; i < m_shown.size(); ++i)
        m_rows[i]->setData(
            {m_shown[i], m_callbacks.pictureOf(m_shown[i]), m_shown[i].id == selectedPresetID});
}

void RecentsBox::leaveEvent(QEvent*) {
    if (m_shown != m_presets)
        setPresets(m_presets, m_selectedPresetID);
}

LibraryBox::LibraryBox(const SidebarCallbacks& callbacks, Thumbnails& thumbnails, const Theme& theme,
                       QWidget* parent)
    : GroupBox(QStringLiteral("Stempelbibliothek"), theme, parent),
      m_emptyText(new TextLabel(QStringLiteral("Noch keine Stempel in der Bibliothek."), theme.font(textSize),
                                Theme::secondaryText, this)),
      m_grid(new PresetGrid({callbacks.onSelect, callbacks.onInsert, callbacks.onDelete}, callbacks.pictureOf,
                            thumbnails, theme, this)) {
    auto* add = new Button(QStringLiteral("PNG hinzufügen"), Button::Look::bordered, Button::Size::regular,
                           theme, this);
    connect(add, &Button::clicked, this, callbacks.onImport);
    // The grid comes after the button, for the Tab key and for screen readers.
    m_grid->followInTabOrder(*add);
    m_grid->raise();
    auto* hint = new TextLabel(QStringLiteral("Doppelklick = direkt einfügen"), theme.font(smallTextSize),
                               Theme::secondaryText, this);
    m_header = new QBoxLayout(QBoxLayout::LeftToRight);
    m_header->addWidget(add);
    m_header->addStretch();
    m_header->addWidget(hint);
    content().addLayout(m_header);
    m_emptyText->setWordWrap(true);
    content().addWidget(m_emptyText);
    m_grid->setAccessibleName(QStringLiteral("Stempel der Bibliothek"));
    content().addWidget(m_grid);
}

void LibraryBox::setBoxWidth(int width) {
    setFixedWidth(width);
    // Large texts stand below one another.
    if (m_header->sizeHint().width() > width - 2 * padding)
        m_header->setDirection(QBoxLayout::TopToBottom);
    m_grid->setFixedWidth(width - 2 * padding);
    m_grid->resize(m_grid->minimumWidth(), m_grid->height());
}

void LibraryBox::setPresets(const QList<StampPreset>& presets, const std::optional<QUuid>& selectedPresetID) {
    m_emptyText->setVisible(presets.isEmpty());
    m_grid->setVisible(!presets.isEmpty());
    m_grid->setData({presets, selectedPresetID});
}

GuideBox::GuideBox(const Theme& theme, QWidget* parent)
    : GroupBox(QStringLiteral("Bedienung"), theme, parent) {
    content().setSpacing(guideSpacing);
    for (const QString& line :
         {QStringLiteral("1. PDF öffnen"), QStringLiteral("2. Standardstempel oder eigene PNGs nutzen"),
          QStringLiteral("3. Bibliothekseintrag auswählen"),
          QStringLiteral("4. Stempel einfügen, dann ziehen oder skalieren"),
          QStringLiteral("5. Speichern oder Speichern unter…")}) {
        auto* label = new TextLabel(line, theme.font(textSize), Theme::text, this);
        label->setWordWrap(true);
        content().addWidget(label);
    }
}

}  // namespace vellmora
