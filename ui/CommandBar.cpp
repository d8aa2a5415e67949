#include "ui/CommandBar.h"

#include <QHBoxLayout>
#include <QShortcut>

namespace vellmora {

CommandBar::CommandBar(const QList<Command>& commands, const Theme& theme, QWidget* parent)
    : QWidget(parent) {
    auto* row = new QHBoxLayout(this);
    constexpr int padding = Theme::commandBarPadding;
    row->setContentsMargins(padding, padding, padding, padding);
    for (const Command& command : commands) {
        auto* button = new QPushButton(command.label, this);
        button->setFont(theme.font(Theme::controlTextSize));
        // A click on a command leaves the page and its keys where they are.
        button->setFocusPolicy(Qt::TabFocus);
        connect(button, &QPushButton::clicked, this, command.run);
        if (!command.shortcut.isEmpty())
            addShortcut(command, *button);
        row->addWidget(button);
        m_buttons.append(button);
    }
    m_status = new ElidedLabel(this);
    m_status->setFont(theme.font(Theme::statusTextSize));
    m_status->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    QPalette dimmed = m_status->palette();
    dimmed.setColor(QPalette::WindowText, Theme::secondaryText(dimmed));
    m_status->setPalette(dimmed);
    row->addWidget(m_status, 1);
}

/// Not the button's own shortcut: that would run the command only after an animated press.
void CommandBar::addShortcut(const Command& command, const QPushButton& button) {
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
}

}  // namespace vellmora
