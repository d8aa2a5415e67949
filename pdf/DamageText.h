#pragma once

#include "pdf/DocumentDamage.h"

#include <QList>
#include <QString>

namespace vellmora {

/// German texts on what of a document is lost; to follow a message, so they begin in lower case and end
/// without a full stop. Empty where there is nothing to say. Page indices are 0-based and ascending.

/// For a document that was opened, for example "beschädigt und repariert; Seiten 8 bis 12 fehlen".
QString damageText(const DocumentDamage& damage);

/// For a file that was written from it, in which these pages lack something: what it does not show of the
/// document.
QString missingText(const DocumentDamage& damage, const QList<qsizetype>& incompletePages);

}  // namespace vellmora
