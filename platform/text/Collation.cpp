#include "platform/text/Collation.h"

#include <QCollator>
#include <QLocale>

namespace vellmora {

int compareNames(const QString& a, const QString& b) {
    static const QCollator collator = [] {
        QCollator german(QLocale(QLocale::German, QLocale::Germany));
        german.setCaseSensitivity(Qt::CaseInsensitive);
        return german;
    }();
    return collator.compare(a, b);
}

}  // namespace vellmora
