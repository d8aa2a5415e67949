#include "ui/Accessibility.h"

#include "ui/MainWindow.h"
#include "ui/PresetGrid.h"
#include "ui/PresetItem.h"
#include "ui/SidebarBoxes.h"

#include <QAccessibleWidget>

namespace vellmora {

namespace {

const QString selectAction = QStringLiteral("Auswählen");
const QString insertAction = QStringLiteral("Einfügen");
const QString deleteAction = QStringLiteral("Löschen");

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
        QStringList names{selectAction, insertAction};
        if (m_item->canDelete())
            names.append(deleteAction);
        return names;
    }
    void doAction(const QString& name) override {
        if (name == selectAction)
            m_item->select();
        else if (name == insertAction)
            m_item->insert();
        else if (name == deleteAction && m_item->canDelete())
            m_item->remove();
    }

private:
    PresetItem* m_item;
};

QAccessibleInterface* makeInterface(const QString&, QObject* object) {
    if (auto* item = qobject_cast<PresetItem*>(object))
        return new PresetItemAccessible(item);
    if (auto* grid = qobject_cast<PresetGrid*>(object))
        return new QAccessibleWidget(grid, QAccessible::List);
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
