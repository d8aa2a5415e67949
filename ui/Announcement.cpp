#include "ui/Announcement.h"

#include <QAccessible>

namespace vellmora {

#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)
void announce(QWidget& source, const QString& text, Urgency urgency) {
    if (!QAccessible::isActive())
        return;
    QAccessibleAnnouncementEvent event(&source, text);
    event.setPoliteness(urgency == Urgency::assertive ? QAccessible::AnnouncementPoliteness::Assertive
                                                      : QAccessible::AnnouncementPoliteness::Polite);
    QAccessible::updateAccessibility(&event);
}
#else
void announce(QWidget& source, const QString&, Urgency) {
    if (!QAccessible::isActive())
        return;
    QAccessibleEvent event(&source, QAccessible::Alert);
    QAccessible::updateAccessibility(&event);
}
#endif

void tellDescriptionChanged(QWidget& widget) {
    if (!QAccessible::isActive())
        return;
    QAccessibleEvent event(&widget, QAccessible::DescriptionChanged);
    QAccessible::updateAccessibility(&event);
}

QString spokenText(QWidget& widget) {
    const QAccessibleInterface* known = QAccessible::queryAccessibleInterface(&widget);
    if (!known)
        return {};
    QStringList texts{known->text(QAccessible::Name), known->text(QAccessible::Description)};
    texts.removeAll(QString());
    return texts.join(QStringLiteral(", "));
}

}  // namespace vellmora
