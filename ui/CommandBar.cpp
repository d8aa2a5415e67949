#include "ui/CommandBar.h"

#include "ui/Button.h"

#include <QHBoxLayout>
#include <QPainter>

namespace vellmora {

namespace {

constexpr int buttonSpacing = 8;
constexpr double statusSize = 12;
constexpr int progressHeight = 3;

}  // namespace

CommandBar::CommandBar(const QList<QAction*>& commands, const Theme& theme, QWidget* parent)
    : QWidget(parent), m_status(new TextLabel({}, theme.font(statusSize), Theme::secondaryText, this)) {
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(padding, padding, padding, padding);
    row->setSpacing(buttonSpacing);
    for (QAction* command : commands) {
        auto* button =
            new Button(command->text(), Button::Look::bordered, Button::Size::regular, theme, this);
        button->setEnabled(command->isEnabled());
        connect(button, &Button::clicked, command, &QAction::trigger);
        connect(command, &QAction::enabledChanged, button, &Button::setEnabled);
        addAction(command);  // its shortcut works in the whole window
        row->addWidget(button);
    }
    m_status->setMaximumLines(1);
    m_status->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    row->addWidget(m_status, 1);
}

void CommandBar::setStatusText(const QString& text) {
    m_status->setText(text);
    m_status->setToolTip(text);
}

void CommandBar::setProgress(std::optional<double> progress) {
    if (m_progress == progress)
        return;
    m_progress = progress;
    update();
}

void CommandBar::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), Theme::commandBarBackground(palette()));
    if (!m_progress)
        return;
    QRectF bar(0, height() - progressHeight, width(), progressHeight);
    painter.fillRect(bar, Theme::divider(palette()));
    bar.setWidth(bar.width() * *m_progress);
    painter.fillRect(bar, Theme::accent(palette()));
}

}  // namespace vellmora
