#include "editor/StampViewAccessible.h"

#include "editor/InteractiveStampView.h"

#include <QAccessibleWidget>

namespace vellmora {

namespace {

const QString selectAction = QStringLiteral("Auswählen");

class StampViewAccessible : public QAccessibleWidget {
public:
    explicit StampViewAccessible(InteractiveStampView* view)
        : QAccessibleWidget(view, QAccessible::ListItem), m_view(view) {}

    QString text(QAccessible::Text kind) const override {
        if (kind != QAccessible::Description)
            return QAccessibleWidget::text(kind);
        const StampItem& stamp = m_view->stamp();
        return QStringLiteral("Seite %1, %2 Punkt von links, %3 Punkt von unten, %4 × %5 Punkt groß")
            .arg(stamp.pageIndex + 1)
            .arg(qRound(stamp.rect.x))
            .arg(qRound(stamp.rect.y))
            .arg(qRound(stamp.rect.width))
            .arg(qRound(stamp.rect.height));
    }
    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.selectable = true;
        state.selected = m_view->isSelectedStamp();
        return state;
    }
    QStringList actionNames() const override { return {selectAction}; }
    void doAction(const QString& name) override {
        if (name == selectAction && m_view->onSelect)
            m_view->onSelect(m_view->stamp().id);
    }

private:
    InteractiveStampView* m_view;
};

QAccessibleInterface* makeInterface(const QString&, QObject* object) {
    auto* view = qobject_cast<InteractiveStampView*>(object);
    return view ? new StampViewAccessible(view) : nullptr;
}

}  // namespace

void installStampViewAccessibility() {
    QAccessible::installFactory(makeInterface);
}

}  // namespace vellmora
