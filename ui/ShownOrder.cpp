#include "ui/ShownOrder.h"

#include <QHash>

namespace vellmora {

QList<StampPreset> inShownOrder(const QList<StampPreset>& presets, const QList<StampPreset>& shown) {
    QHash<QUuid, const StampPreset*> byID;
    for (const StampPreset& preset : presets)
        byID.insert(preset.id, &preset);
    QList<StampPreset> ordered;
    for (const StampPreset& preset : shown) {
        if (const StampPreset* found = byID.value(preset.id))
            ordered.append(*found);
    }
    return ordered.size() == presets.size() ? ordered : presets;
}

}  // namespace vellmora
