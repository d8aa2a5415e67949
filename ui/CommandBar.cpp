#include "ui/CommandBar.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QShortcut>

namespace vellmora {

namespace {

constexpr int buttonSpacing = 8;
constexpr double statusSize = 12;

}  // namespace

CommandBar::CommandBar(const QList<Command>& commands, const Theme& theme, QWidget* parent)
    : QWidget(parent), m_status(new TextLabel({}, theme.font(statusSize), Theme::secondaryText, this)) {
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(padding, padding, padding, padding);
    row->setSpacing(buttonSpacing);
    for (const Command& command : commands) {
        auto* button = new Button(command.label, Button::Look::bordered, Button::Size::regular, theme, this);
        connect(button, &Button::clicked, this, command.run);
        if (!command.shortcut.isEmpty())
            addShortcut(command, *button);
        row->addWidget(button);
        m_buttons.append(button);
    }
    m_status->setMaximumLines(1);
    m_status->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    row->addWidget(m_status, 1);
}

/// Not the button's own shortcut: that would run the command only after an animated press.
void CommandBar::addShortcut(const Command& command, const Button& button) {
    auto* shortcut = new QShortcut(command.shortcut, this);
    shortcut->setAutoRepeat(false);
    connect(shortcut, &QShortcut::activated, this, [&button, run = command.run] {
        if (button.isEnabled())
            run();
    });
}

void CommandBar::setData(const Data& newData) {
    for (qsizetype i = 0; i < m_buttons.size(); ++i)
        m_buttons[i]->setEnabled(newData.enabled.value(i));
    m_status->setText(newData.statusText);
    m_status->setToolTip(newData.statusText);  // it may be longer than its line
}

void CommandBar::paintEvent(QPaintEvent*) {
    QPainter(this).fillRect(rect(), Theme::commandBarBackground(palette()));
}

}  // namespace vellmora
