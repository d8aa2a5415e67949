#pragma once

#include <optional>

#include <QString>
#include <QUuid>

namespace vellmora {

/// Canonical 8-4-4-4-12 form in upper case, without braces.
QString identifierText(const QUuid& id);

/// Reads the canonical form in either case and nothing else (no braces, no missing hyphens).
std::optional<QUuid> parseIdentifier(const QString& text);

}  // namespace vellmora
