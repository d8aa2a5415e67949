#include "ui/PresetGridAccessible.h"

#include <QKeySequence>
#include <QPointer>
#include <QWindow>

namespace vellmora {

namespace {

const QString selectAction = QStringLiteral("Auswählen");
const QString insertAction = QStringLiteral("Einfügen");
const QString deleteAction = QStringLiteral("Löschen");

/// An entry out of sight: what its tile would say.
class HiddenEntry : public QAccessibleInterface, public QAccessibleActionInterface {
public:
    HiddenEntry(PresetGrid* grid, const QUuid& id) : m_grid(grid), m_id(id) {}

    const QUuid& id() const { return m_id; }

    bool isValid() const override { return m_grid && index() >= 0; }
    QObject* object() const override { return nullptr; }
    QWindow* window() const override { return m_grid->window()->windowHandle(); }
    QAccessibleInterface* parent() const override { return QAccessible::queryAccessibleInterface(m_grid); }
    QAccessibleInterface* child(int) const override { return nullptr; }
    QAccessibleInterface* childAt(int, int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface*) const override { return -1; }
    QAccessible::Role role() const override { return QAccessible::ListItem; }
    void setText(QAccessible::Text, const QString&) override {}

    QString text(QAccessible::Text kind) const override {
        return kind == QAccessible::Name && isValid() ? preset().displayName : QString();
    }
    QRect rect() const override {
        if (!isValid())
            return {};
        const QRect area = m_grid->tileArea(index());
        return {m_grid->mapToGlobal(area.topLeft()), area.size()};
    }
    QAccessible::State state() const override {
        QAccessible::State state;
        state.invalid = !isValid();
        state.offscreen = true;
        state.focusable = true;
        state.selectable = true;
        state.selected = isValid() && m_grid->isSelected(index());
        return state;
    }
    void* interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this)
                                                    : nullptr;
    }
    QStringList actionNames() const override {
        return presetactions::names(true) + QStringList{setFocusAction()};
    }
    void doAction(const QString& name) override {
        if (!isValid())
            return;
        if (name == setFocusAction())
            m_grid->focusTile(index());
        else if (const auto* action = presetactions::find(name, m_grid->callbacks()))
            (*action)(preset());
    }
    QStringList keyBindingsForAction(const QString& name) const override {
        return presetactions::keyBindings(name);
    }

private:
    qsizetype index() const { return m_grid->indexOf(m_id); }
    const StampPreset& preset() const { return m_grid->presets()[index()]; }

    QPointer<PresetGrid> m_grid;
    QUuid m_id;
};

}  // namespace

QStringList presetactions::names(bool canDelete) {
    QStringList names{selectAction, insertAction};
    if (canDelete)
        names.append(deleteAction);
    return names;
}

QStringList presetactions::keyBindings(const QString& action) {
    const auto text = [](Qt::Key key) {
        return QStringList{QKeySequence(key).toString(QKeySequence::NativeText)};
    };
    if (action == selectAction)
        return text(Qt::Key_Space);
    if (action == insertAction)
        return text(Qt::Key_Return);
    return action == deleteAction ? text(Qt::Key_Delete) : QStringList();
}

const std::function<void(const StampPreset&)>* presetactions::find(const QString& action,
                                                                   const PresetItem::Callbacks& callbacks) {
    if (action == selectAction)
        return &callbacks.onSelect;
    if (action == insertAction)
        return &callbacks.onInsert;
    return action == deleteAction && callbacks.onDelete ? &callbacks.onDelete : nullptr;
}

PresetGridAccessible::PresetGridAccessible(PresetGrid* grid)
    : QAccessibleWidget(grid, QAccessible::List), m_grid(grid) {}

PresetGridAccessible::~PresetGridAccessible() {
    for (const QAccessible::Id id : std::as_const(m_hidden))
        QAccessible::deleteAccessibleInterface(id);
}

int PresetGridAccessible::childCount() const {
    return static_cast<int>(m_grid->presets().size());
}

QAccessibleInterface* PresetGridAccessible::child(int index) const {
    if (index < 0 || index >= childCount())
        return nullptr;
    if (PresetTile* tile = m_grid->tile(index))
        return QAccessible::queryAccessibleInterface(tile);
    return hiddenEntry(m_grid->presets()[index].id);
}

QAccessibleInterface* PresetGridAccessible::hiddenEntry(const QUuid& id) const {
    const auto known = m_hidden.constFind(id);
    if (known != m_hidden.cend())
        return QAccessible::accessibleInterface(*known);
    auto* entry = new HiddenEntry(m_grid, id);
    m_hidden.insert(id, QAccessible::registerAccessibleInterface(entry));
    return entry;
}

int PresetGridAccessible::indexOfChild(const QAccessibleInterface* child) const {
    if (!child)
        return -1;
    if (const auto* tile = qobject_cast<const PresetTile*>(child->object()))
        return static_cast<int>(m_grid->indexOf(tile->preset().id));
    const auto* entry = dynamic_cast<const HiddenEntry*>(child);
    return entry ? static_cast<int>(m_grid->indexOf(entry->id())) : -1;
}

QAccessibleInterface* PresetGridAccessible::childAt(int x, int y) const {
    QWidget* widget = m_grid->childAt(m_grid->mapFromGlobal(QPoint(x, y)));
    while (widget && widget != m_grid && !qobject_cast<PresetTile*>(widget))
        widget = widget->parentWidget();
    return widget && widget != m_grid ? QAccessible::queryAccessibleInterface(widget) : nullptr;
}

}  // namespace vellmora
