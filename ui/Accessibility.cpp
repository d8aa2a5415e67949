#include "ui/Accessibility.h"

#include "ui/Button.h"
#include "ui/MainWindow.h"
#include "ui/PresetGridAccessible.h"
#include "ui/SidebarBoxes.h"

#include <QAccessibleWidget>

namespace vellmora {

namespace {

class PresetItemAccessible : public QAccessibleWidget {
public:
    explicit PresetItemAccessible(PresetItem* item)
        : QAccessibleWidget(item, QAccessible::ListItem), m_item(item) {}

    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.selectable = true;
        state.selected = m_item->isSelected();
        return state;
    }
    QStringList actionNames() const override {
        return presetactions::names(m_item->canDelete()) + QAccessibleWidget::actionNames();
    }
    void doAction(const QString& name) override {
        if (const auto* action = presetactions::find(name, m_item->callbacks()))
            (*action)(m_item->preset());
        else
            QAccessibleWidget::doAction(name);
    }
    QStringList keyBindingsForAction(const QString& name) const override {
        return presetactions::keyBindings(name);
    }
    // Qt hides menus from their parent's children. Nothing else leads to this one.
    int childCount() const override { return QAccessibleWidget::childCount() + (m_item->openMenu() ? 1 : 0); }
    QAccessibleInterface* child(int index) const override {
        return index == QAccessibleWidget::childCount()
                   ? QAccessible::queryAccessibleInterface(m_item->openMenu())
                   : QAccessibleWidget::child(index);
    }
    int indexOfChild(const QAccessibleInterface* child) const override {
        const bool isMenu = child && child->object() && child->object() == m_item->openMenu();
        return isMenu ? QAccessibleWidget::childCount() : QAccessibleWidget::indexOfChild(child);
    }

private:
    PresetItem* m_item;
};

/// A button with the keys that do the same as it.
class ButtonAccessible : public QAccessibleWidget {
public:
    explicit ButtonAccessible(Button* button)
        : QAccessibleWidget(button, QAccessible::Button), m_button(button) {}

    QString text(QAccessible::Text kind) const override {
        switch (kind) {
            case QAccessible::Name:
                return m_button->accessibleName().isEmpty() ? m_button->text() : m_button->accessibleName();
            case QAccessible::Accelerator:
                return keys();
            case QAccessible::Description:
                return m_button->accessibleDescription();
            default:
                return QAccessibleWidget::text(kind);
        }
    }
    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.pressed = m_button->isDown();
        return state;
    }
    QStringList actionNames() const override {
        QStringList names = QAccessibleWidget::actionNames();
        if (m_button->isEnabled())
            names.prepend(pressAction());
        return names;
    }
    /// The tool waits for the answer, and what the button does may take its time.
    void doAction(const QString& name) override {
        if (name == pressAction())
            QMetaObject::invokeMethod(m_button, &Button::click, Qt::QueuedConnection);
        else
            QAccessibleWidget::doAction(name);
    }
    QStringList keyBindingsForAction(const QString& name) const override {
        return name == pressAction() && !keys().isEmpty() ? QStringList{keys()} : QStringList();
    }

private:
    QString keys() const { return m_button->shownShortcut().toString(QKeySequence::NativeText); }

    Button* m_button;
};

QAccessibleInterface* makeInterface(const QString&, QObject* object) {
    if (auto* item = qobject_cast<PresetItem*>(object))
        return new PresetItemAccessible(item);
    if (auto* grid = qobject_cast<PresetGrid*>(object))
        return new PresetGridAccessible(grid);
    if (auto* button = qobject_cast<Button*>(object))
        return new ButtonAccessible(button);
    if (auto* box = qobject_cast<GroupBox*>(object))
        return new QAccessibleWidget(box, QAccessible::Grouping);
    if (auto* window = qobject_cast<MainWindow*>(object))
        return new QAccessibleWidget(window, QAccessible::Window);
    return nullptr;
}

}  // namespace

void installAccessibility() {
    QAccessible::installFactory(makeInterface);
}

}  // namespace vellmora
