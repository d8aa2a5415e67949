#include "preview/PDFViewAccessible.h"

#include "preview/PDFView.h"

#include <QAccessibleWidget>
#include <QMenu>

namespace vellmora {

namespace {

/// Qt hides menus from their parent's children, since most belong to a button or a menu bar, which
/// lead to them. Nothing leads to this one.
class PDFViewAccessible : public QAccessibleWidget {
public:
    explicit PDFViewAccessible(PDFView* view)
        : QAccessibleWidget(view, QAccessible::Document), m_view(view) {}

    QString text(QAccessible::Text kind) const override {
        return kind == QAccessible::Description ? m_view->pageDescription() : QAccessibleWidget::text(kind);
    }
    int childCount() const override { return QAccessibleWidget::childCount() + (openMenu() ? 1 : 0); }
    QAccessibleInterface* child(int index) const override {
        if (index == QAccessibleWidget::childCount())
            return QAccessible::queryAccessibleInterface(openMenu());
        return QAccessibleWidget::child(index);
    }
    int indexOfChild(const QAccessibleInterface* child) const override {
        if (child && child->object() && child->object() == openMenu())
            return QAccessibleWidget::childCount();
        return QAccessibleWidget::indexOfChild(child);
    }

private:
    QMenu* openMenu() const {
        auto* menu = m_view->findChild<QMenu*>({}, Qt::FindDirectChildrenOnly);
        return menu && menu->isVisible() ? menu : nullptr;
    }

    PDFView* m_view;
};

QAccessibleInterface* makeInterface(const QString&, QObject* object) {
    auto* view = qobject_cast<PDFView*>(object);
    return view ? new PDFViewAccessible(view) : nullptr;
}

}  // namespace

void installPageViewAccessibility() {
    QAccessible::installFactory(makeInterface);
}

}  // namespace vellmora
