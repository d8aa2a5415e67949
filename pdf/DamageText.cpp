#include "pdf/DamageText.h"

#include <algorithm>
#include <iterator>

#include <QStringList>

namespace vellmora {

namespace {

/// So many single pages or runs of pages are named; the status line has one line only.
constexpr qsizetype maxNamedRuns = 4;

/// "3", "8 bis 12"; two pages that follow each other are named one by one.
QStringList runsOf(const QList<qsizetype>& pages, QList<qsizetype>& lengths) {
    QStringList runs;
    for (qsizetype first = 0, behind = 0; first < pages.size(); first = behind) {
        for (behind = first + 1; behind < pages.size() && pages[behind] == pages[behind - 1] + 1; ++behind) {
        }
        if (behind - first == 2)
            behind = first + 1;
        lengths.append(behind - first);
        runs.append(behind - first == 1
                        ? QString::number(pages[first] + 1)
                        : QStringLiteral("%1 bis %2").arg(pages[first] + 1).arg(pages[behind - 1] + 1));
    }
    return runs;
}

/// "Seite 3", "Seiten 1, 3 und 8 bis 12", "Seiten 1, 3, 5, 7 und 40 weitere".
QString namesOf(const QList<qsizetype>& pages) {
    if (pages.size() == 1)
        return QStringLiteral("Seite %1").arg(pages.first() + 1);
    QList<qsizetype> lengths;
    QStringList runs = runsOf(pages, lengths);
    qsizetype unnamed = 0;
    for (; runs.size() > maxNamedRuns; runs.removeLast())
        unnamed += lengths.takeLast();
    const QString last = unnamed > 0       ? QStringLiteral("%1 weitere").arg(unnamed)
                         : runs.size() > 1 ? runs.takeLast()
                                           : QString();
    const QString names = QStringLiteral("Seiten ") + runs.join(QStringLiteral(", "));
    return last.isEmpty() ? names : names + QStringLiteral(" und ") + last;
}

QStringList lostPagesTexts(const DocumentDamage& damage) {
    QStringList texts;
    const qsizetype lost = damage.lostPages.size();
    if (lost > 0) {
        texts += namesOf(damage.lostPages) + (lost == 1 ? QStringLiteral(" fehlt und ist leer")
                                                        : QStringLiteral(" fehlen und sind leer"));
    }
    if (damage.uncountedPages == 1)
        texts += QStringLiteral("eine weitere Seite fehlt");
    else if (damage.uncountedPages > 1)
        texts += QStringLiteral("%1 weitere Seiten fehlen").arg(damage.uncountedPages);
    return texts;
}

}  // namespace

QString damageText(const DocumentDamage& damage) {
    QStringList texts;
    if (damage.isCutOff)
        texts += QStringLiteral("unvollständig: das Ende der Datei fehlt");
    else if (damage.isRepaired)
        texts += QStringLiteral("beschädigt und repariert");
    texts += lostPagesTexts(damage);
    return texts.join(QStringLiteral("; "));
}

QString missingText(const DocumentDamage& damage, const QList<qsizetype>& incompletePages) {
    QList<qsizetype> incomplete;
    std::set_difference(incompletePages.begin(), incompletePages.end(), damage.lostPages.begin(),
                        damage.lostPages.end(), std::back_inserter(incomplete));
    QStringList texts;
    if (!incomplete.isEmpty())
        texts += QStringLiteral("Inhalt von ") + namesOf(incomplete) + QStringLiteral(" fehlt");
    texts += lostPagesTexts(damage);
    return texts.join(QStringLiteral("; "));
}

}  // namespace vellmora
