#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace vellmora::test {

/// Whether these bytes are a sound PDF of so many pages.
bool isWholePdf(const QByteArray& bytes, int pageCount);

/// Temporary items that a save or an import left in the folder or below it.
QStringList leftovers(const QString& folder);

}  // namespace vellmora::test
