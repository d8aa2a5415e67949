#pragma once

#include <QByteArray>

namespace vellmora {

/// A copy of a damaged file that can be read: the objects are searched for, and a complete cross-reference
/// stream is appended, with a trailer and, where need be, a catalog. So files without a cross-reference
/// table, a trailer or a beginning or end can be read as far as they go.
///
/// Encryption that concerns neither streams nor strings is left out of the copy: its password is only that of
/// the attachments. Throws libqpdf's exceptions where the file needs a password.
QByteArray repairedFile(const QByteArray& damaged);

}  // namespace vellmora
