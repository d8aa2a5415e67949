#pragma once

#include "ui/PresetGrid.h"

#include <QAccessibleWidget>

namespace vellmora {

/// What assistive tools can do with an entry of the library: select, insert and (in the grid) delete it.
namespace presetactions {

QStringList names(bool canDelete);
QStringList keyBindings(const QString& action);
/// Null for an action of another name.
const std::function<void(const StampPreset&)>* find(const QString& action,
                                                    const PresetItem::Callbacks& callbacks);

}  // namespace presetactions

/// The grid as a list of all entries, in the order in which they are shown. Those in sight are their tiles;
/// the others, which have no widgets, are described just as well and can be acted upon.
class PresetGridAccessible : public QAccessibleWidget {
public:
    explicit PresetGridAccessible(PresetGrid* grid);
    ~PresetGridAccessible() override;

    int childCount() const override;
    QAccessibleInterface* child(int index) const override;
    int indexOfChild(const QAccessibleInterface* child) const override;
    QAccessibleInterface* childAt(int x, int y) const override;

private:
    QAccessibleInterface* hiddenEntry(const QUuid& id) const;

    PresetGrid* m_grid;
    /// Entries that somebody asked for while they were out of sight.
    mutable QHash<QUuid, QAccessible::Id> m_hidden;
};

}  // namespace vellmora
