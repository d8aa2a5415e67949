#pragma once

#include "base/UserDefaults.h"

#include <QList>
#include <QUuid>

namespace vellmora {

/// Which presets were used most recently, in the user's settings: all windows and programs share the list. It
/// has no copy in memory but that of the settings.
class RecentPresets {
public:
    static const QString defaultsKey;
    static constexpr qsizetype maxStored = 12;

    /// `defaults` must outlive the object.
    explicit RecentPresets(UserDefaults& defaults) : m_defaults(defaults) {}

    /// Most recently used first. What is no identifier in the settings is passed over.
    QList<QUuid> ids() const;
    /// Moves or adds the id to the front.
    void prepend(const QUuid& id);
    void remove(const QUuid& id);

private:
    UserDefaults& m_defaults;
};

}  // namespace vellmora
