#pragma once

#include "base/SnapshotReader.h"
#include "engine/objects/Qpdf.h"

#include <string>

namespace vellmora {

/// What to do about a damaged cross-reference table: fail, or let libqpdf search for the objects.
enum class Damage { refuse, recover };

/// Reads the structure of the file, whose content must outlive `file`. Nothing is printed. Throws the
/// library's exceptions where that fails, also for want of a password. What lies behind the table and the
/// catalog is read as well as its damage allows, later, when it is needed.
void openFile(QPDF& file, const SnapshotReader& content, Damage damage = Damage::refuse);

/// The same with another table in place of the file's own: of those objects that it names, and no others. It
/// stands at `FileInput::endPosition`.
void openFile(QPDF& file, const SnapshotReader& content, std::string table);

}  // namespace vellmora
