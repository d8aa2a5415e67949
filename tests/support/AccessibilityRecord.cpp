#include "tests/support/AccessibilityRecord.h"

#include <array>
#include <functional>
#include <optional>

#include <QMetaEnum>
#include <QSet>

#ifdef VELLMORA_CAN_LISTEN
#include <private/qguiapplication_p.h>

#include <qpa/qplatformaccessibility.h>
#include <qpa/qplatformintegration.h>
#endif

namespace vellmora::test {

namespace {

AccessibilityRecord* current = nullptr;

const char* nameOf(AccessibilityRecord::Kind kind) {
    static constexpr std::array names{"focus", "announcement", "selection", "name", "description", "order"};
    return names.at(static_cast<size_t>(kind));
}

QString nameOf(QAccessible::Role role) {
    return QString::fromLatin1(QMetaEnum::fromType<QAccessible::Role>().valueToKey(role));
}

/// Events of objects that are being made or destroyed are left alone: asking for what they are is too early,
/// or too late.
std::optional<AccessibilityRecord::Kind> kindOf(const QAccessibleEvent& event) {
    using Kind = AccessibilityRecord::Kind;
    switch (event.type()) {
        case QAccessible::Focus:
            return Kind::focus;
        case QAccessible::Alert:
            return Kind::announcement;
        case QAccessible::NameChanged:
            return Kind::name;
        case QAccessible::DescriptionChanged:
            return Kind::description;
        case QAccessible::ObjectReorder:
            return Kind::order;
        case QAccessible::StateChanged:
            if (static_cast<const QAccessibleStateChangeEvent&>(event).changedStates().selected)
                return Kind::selection;
            return std::nullopt;
        default:
#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)
            if (event.type() == QAccessible::Announcement)
                return Kind::announcement;
#endif
            return std::nullopt;
    }
}

QString messageOf(const QAccessibleEvent& event, const QString& name, const QString& description) {
#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)
    if (event.type() == QAccessible::Announcement)
        return static_cast<const QAccessibleAnnouncementEvent&>(event).message();
#endif
    return event.type() == QAccessible::Alert ? name + QStringLiteral(", ") + description : description;
}

using Visitor = std::function<void(QAccessibleInterface&, int depth)>;

void visit(QAccessibleInterface* node, int depth, const Visitor& visitor) {
    if (!node || !node->isValid() || node->state().invisible)
        return;
    visitor(*node, depth);
    for (int i = 0; i < node->childCount(); ++i)
        visit(node->child(i), depth + 1, visitor);
}

}  // namespace

#ifdef VELLMORA_CAN_LISTEN
bool AccessibilityRecord::canListen() {
    return true;
}

static void setActive(bool isActive) {
    QGuiApplicationPrivate::platformIntegration()->accessibility()->setActive(isActive);
}
#else
bool AccessibilityRecord::canListen() {
    return false;
}

static void setActive(bool) {}
#endif

AccessibilityRecord::AccessibilityRecord() {
    current = this;
    setActive(true);
    QAccessible::installUpdateHandler(handle);
}

AccessibilityRecord::~AccessibilityRecord() {
    QAccessible::installUpdateHandler(nullptr);
    setActive(false);
    current = nullptr;
}

void AccessibilityRecord::handle(QAccessibleEvent* event) {
    if (current)
        current->add(event);
}

void AccessibilityRecord::add(QAccessibleEvent* event) {
    const std::optional<Kind> kind = kindOf(*event);
    const QAccessibleInterface* source = kind ? event->accessibleInterface() : nullptr;
    if (!source)
        return;
    const QString name = source->text(QAccessible::Name);
    const QString description = source->text(QAccessible::Description);
    m_events.append({*kind, source->role(), name, messageOf(*event, name, description)});
}

QStringList AccessibilityRecord::announcements() const {
    QStringList messages;
    for (const Event& event : m_events) {
        if (event.kind == Kind::announcement)
            messages.append(event.text);
    }
    return messages;
}

QString AccessibilityRecord::lines() const {
    QString lines;
    for (const Event& event : m_events)
        lines += QStringLiteral("    %1: %2 “%3” %4\n")
                     .arg(QLatin1String(nameOf(event.kind)), nameOf(event.role), event.name, event.text);
    return lines;
}

QString AccessibilityRecord::tree(QAccessibleInterface* root) {
    QString lines;
    visit(root, 2, [&](QAccessibleInterface& node, int depth) {
        QStringList words{nameOf(node.role()), QStringLiteral("“%1”").arg(node.text(QAccessible::Name)),
                          node.text(QAccessible::Description)};
        if (node.state().selected)
            words.append(QStringLiteral("(selected)"));
        if (node.state().disabled)
            words.append(QStringLiteral("(disabled)"));
        if (node.state().offscreen)
            words.append(QStringLiteral("(out of sight)"));
        for (const auto& [label, relation] : node.relations(QAccessible::Label))
            words.append(QStringLiteral("(labelled “%1”)").arg(label->text(QAccessible::Name)));
        if (QAccessibleActionInterface* actions = node.actionInterface()) {
            for (const QString& action : actions->actionNames())
                words.append(actions->keyBindingsForAction(action));
        }
        words.removeAll(QString());
        lines += QString(qsizetype{2} * depth, QLatin1Char(' ')) + words.join(QLatin1Char(' ')) +
                 QLatin1Char('\n');
    });
    return lines;
}

QStringList AccessibilityRecord::faults(QAccessibleInterface* root) {
    QStringList faults;
    QSet<QString> buttons;
    visit(root, 0, [&](QAccessibleInterface& node, int) {
        const QString name = node.text(QAccessible::Name);
        if (node.state().focusable && name.isEmpty())
            faults.append(QStringLiteral("without a name: ") + nameOf(node.role()));
        if (node.role() == QAccessible::Button && buttons.contains(name))
            faults.append(QStringLiteral("two buttons: ") + name);
        if (node.role() == QAccessible::Button)
            buttons.insert(name);
    });
    return faults;
}

}  // namespace vellmora::test
