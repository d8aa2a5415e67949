#pragma once

#include <QUrl>

namespace vellmora {

/// Access to a file that the user chose, held for the life of the object. This platform has no sandbox that
/// would have to be asked: access is never granted specially, and never needed.
class SecurityScopedAccess {
public:
    explicit SecurityScopedAccess(const QUrl&) {}
    ~SecurityScopedAccess() = default;
    SecurityScopedAccess(const SecurityScopedAccess&) = delete;
    SecurityScopedAccess& operator=(const SecurityScopedAccess&) = delete;

    bool wasGranted() const { return false; }
};

}  // namespace vellmora
