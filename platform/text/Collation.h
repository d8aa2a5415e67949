#pragma once

#include <QString>

namespace vellmora {

/// Order of two names for a German reader, without regard to case: negative, zero or positive.
int compareNames(const QString& a, const QString& b);

}  // namespace vellmora
