#include "ui/StatisticsBox.h"

#include <QHBoxLayout>

namespace vellmora {

namespace {

constexpr double rowTextSize = 12;

}

StatisticsBox::StatisticsBox(const Theme& theme, QWidget* parent)
    : GroupBox(QStringLiteral("Vellmora"), theme, parent),
      m_page(addRow(QStringLiteral("Seite"), theme)),
      m_total(addRow(QStringLiteral("Stempel gesamt"), theme)),
      m_onPage(addRow(QStringLiteral("Aktuelle Seite"), theme)),
      m_library(addRow(QStringLiteral("Bibliothek"), theme)) {
    addRow(QStringLiteral("Speicherort"), theme)->setText(QStringLiteral("Application Support"));
}

/// The title, a flexible space, and the value, whose figures are all of one width.
TextLabel* StatisticsBox::addRow(const QString& title, const Theme& theme) {
    const QFont font = theme.font(rowTextSize, Theme::medium);
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

}  // namespace vellmora
