#include "ui/CommandBar.h"

#include "ui/Button.h"

#include <QPainter>

namespace vellmora {

namespace {

constexpr int buttonSpacing = 8;
constexpr double statusSize = 12;
constexpr int signSize = 16;
constexpr int leastStatusWidth = 220;
constexpr int progressHeight = 3;

}  // namespace

CommandBar::CommandBar(const QList<QAction*>& commands, const Theme& theme, QWidget* parent)
    : QWidget(parent),
      m_status(new TextLabel({}, theme.font(statusSize), Theme::secondaryText, this)),
      m_signSize(theme.scaled(signSize)),
      m_lines(new QBoxLayout(QBoxLayout::LeftToRight, this)),
      m_statusLine(new QHBoxLayout) {
    m_lines->setContentsMargins(padding, padding, padding, padding);
    m_lines->setSpacing(buttonSpacing);
    QHBoxLayout* buttons = makeButtons(commands, theme);
    setAttribute(Qt::WA_OpaquePaintEvent);
    m_status->raise();  // last for screen readers, too
    m_oneLineWidth = buttons->sizeHint().width() + theme.scaled(leastStatusWidth) + 2 * padding;
    m_lines->addLayout(buttons);
    m_statusLine->setSpacing(buttonSpacing);
    m_statusLine->addStretch();
    m_statusLine->addWidget(m_status, 1);
    m_lines->addLayout(m_statusLine, 1);
    m_status->setMaximumLines(1);
    m_status->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
}

QHBoxLayout* CommandBar::makeButtons(const QList<QAction*>& commands, const Theme& theme) {
    auto* row = new QHBoxLayout;
    row->setSpacing(buttonSpacing);
    for (QAction* command : commands) {
        auto* button =
            new Button(command->text(), Button::Look::bordered, Button::Size::regular, theme, this);
        button->setEnabled(command->isEnabled());
        button->showShortcut(command->shortcut());
        connect(button, &Button::clicked, command, &QAction::trigger);
        connect(command, &QAction::enabledChanged, button, &Button::setEnabled);
        addAction(command);  // its shortcut works in the whole window
        row->addWidget(button);
    }
    row->addStretch();
    return row;
}

void CommandBar::setStatus(const QString& text, bool isProblem) {
    if (text == m_status->text() && isProblem == (m_problemSign && m_problemSign->isVisibleTo(this)))
        return;
    m_status->setText(text);
    // No wider than its text, so that the sign stands beside that.
    m_status->setMaximumWidth(m_status->sizeHint().width());
    if (isProblem && !m_problemSign) {
        const auto color = [](const QPalette& palette) {
            return Theme::problem(Theme::commandBarBackground(palette));
        };
        m_problemSign = new SymbolView(Symbol::warning, m_signSize, color, this);
        m_statusLine->insertWidget(m_statusLine->indexOf(m_status), m_problemSign);
    }
    if (m_problemSign)
        m_problemSign->setVisible(isProblem);
}

void CommandBar::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    m_lines->setDirection(width() < m_oneLineWidth ? QBoxLayout::TopToBottom : QBoxLayout::LeftToRight);
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
