#include "ui/PresetItem.h"

#include "ui/RoundedRect.h"

#include <utility>

#include <QAccessible>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QPainter>

namespace vellmora {

PresetItem::PresetItem(const Look& look, Callbacks callbacks, QWidget* parent)
    : QWidget(parent), m_look(look), m_callbacks(std::move(callbacks)) {
    setFocusPolicy(Qt::StrongFocus);
}

void PresetItem::setData(const Data& newData) {
    const bool isSelectionChanged = newData.isSelected != m_data.isSelected;
    m_data = newData;
    // Assistive tools are told each time that it is set.
    if (accessibleName() != newData.preset.displayName)
        setAccessibleName(newData.preset.displayName);
    if (!isSelectionChanged)
        return;
    update();
    QAccessible::State changed;
    changed.selected = true;
    QAccessibleStateChangeEvent event(this, changed);
    QAccessible::updateAccessibility(&event);
}

void PresetItem::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor accent = Theme::accent(palette());
    fillRoundedRect(painter, rect(), m_look.radius,
                    isSelected() ? Theme::withOpacity(accent, m_look.selectedOpacity)
                                 : Theme::black(m_look.unselectedOpacity));
    if (isSelected() && m_look.borderWidth > 0) {
        const double inset = m_look.borderWidth / 2;
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(accent, m_look.borderWidth));
        const QRectF line = QRectF(rect()).adjusted(inset, inset, -inset, -inset);
        const double radius = m_look.radius - inset;
        paintInStrips(painter, rect(), rowsOfCurves, [&] { painter.drawRoundedRect(line, radius, radius); });
    }
    m_focusRing.paint(painter, rect(), m_look.radius, palette());
}

void PresetItem::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton)
        select();
}

void PresetItem::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
        case Qt::Key_Space:
        case Qt::Key_Select:
            return select();
        case Qt::Key_Return:
        case Qt::Key_Enter:
            return insert();
        case Qt::Key_Delete:
            if (canDelete())
                return remove();
            break;
        case Qt::Key_F10:
            // With Shift, what the menu key does: Qt leaves it to the program on this platform.
            if (event->modifiers() & Qt::ShiftModifier)
                return showMenu(mapToGlobal(rect().center()));
            break;
        default:
            break;
    }
    QWidget::keyPressEvent(event);
}

void PresetItem::contextMenuEvent(QContextMenuEvent* event) {
    const bool isByKey = event->reason() == QContextMenuEvent::Keyboard;
    showMenu(isByKey ? mapToGlobal(rect().center()) : event->globalPos());
}

/// What is chosen may end this item: it is done when the menu is closed.
void PresetItem::showMenu(const QPoint& globalPosition) {
    auto* menu = new QMenu(this);
    m_menu = menu;
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->setAccessibleName(m_data.preset.displayName);
    const auto add = [&](const QString& text, const auto& action) {
        menu->addAction(
            text, this, [preset = m_data.preset, action] { action(preset); }, Qt::QueuedConnection);
    };
    add(QStringLiteral("Auswählen"), m_callbacks.onSelect);
    add(QStringLiteral("Einfügen"), m_callbacks.onInsert);
    if (canDelete())
        add(QStringLiteral("Löschen"), m_callbacks.onDelete);
    menu->popup(globalPosition);
}

void PresetItem::focusInEvent(QFocusEvent* event) {
    m_focusRing.focusIn(*event);
    update();
}

void PresetItem::focusOutEvent(QFocusEvent* event) {
    m_focusRing.focusOut(*event);
    update();
}

}  // namespace vellmora
