#include "ui/SidebarBoxes.h"

#include "ui/Button.h"

#include <utility>

#include <QHBoxLayout>
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
      m_content(new QVBoxLayout(this)) {
    setAccessibleName(m_title);
    m_content->setContentsMargins(padding, titleHeight + titleGap + padding, padding, padding);
    m_content->setSpacing(itemSpacing);
}

void GroupBox::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setFont(m_titleFont);
    painter.setPen(Theme::text(palette()));
    painter.drawText(QRect(2, 0, width(), titleHeight), Qt::AlignLeft | Qt::AlignVCenter, m_title);
    painter.setPen(QPen(Theme::divider(palette()), 1));
    painter.setBrush(Theme::boxBackground(palette()));
    const QRectF frame(0, titleHeight + titleGap, width(), height() - titleHeight - titleGap);
    painter.drawRoundedRect(frame.adjusted(0.5, 0.5, -0.5, -0.5), frameRadius, frameRadius);
}

StatisticsBox::StatisticsBox(const Theme& theme, QWidget* parent)
    : GroupBox(QStringLiteral("Vellmora"), theme, parent),
      m_page(addRow(QStringLiteral("Seite"), theme)),
      m_total(addRow(QStringLiteral("Stempel gesamt"), theme)),
      m_onPage(addRow(QStringLiteral("Aktuelle Seite"), theme)),
      m_library(addRow(QStringLiteral("Bibliothek"), theme)) {
    addRow(QStringLiteral("Speicherort"), theme)->setText(QStringLiteral("Application Support"));
}

/// The title on the left and the value on the right. The font's figures are all of one width.
TextLabel* StatisticsBox::addRow(const QString& title, const Theme& theme) {
    const QFont font = theme.font(textSize, Theme::medium);
    auto* row = new QHBoxLayout;
    auto* value = new TextLabel({}, font, Theme::text, this);
    row->addWidget(new TextLabel(title, font, Theme::secondaryText, this));
    row->addStretch();
    row->addWidget(value);
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
    auto* row = new QHBoxLayout;
    row->addWidget(add);
    row->addStretch();
    row->addWidget(new TextLabel(QStringLiteral("Doppelklick = direkt einfügen"), theme.font(smallTextSize),
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

GuideBox::GuideBox(const Theme& theme, QWidget* parent)
    : GroupBox(QStringLiteral("Bedienung"), theme, parent) {
    content().setSpacing(guideSpacing);
    for (const QString& line :
         {QStringLiteral("1. PDF öffnen"), QStringLiteral("2. Standardstempel oder eigene PNGs nutzen"),
          QStringLiteral("3. Bibliothekseintrag auswählen"),
          QStringLiteral("4. Stempel einfügen, dann ziehen oder skalieren"),
          QStringLiteral("5. Speichern oder Speichern unter…")})
        content().addWidget(new TextLabel(line, theme.font(textSize), Theme::text, this));
}

}  // namespace vellmora
