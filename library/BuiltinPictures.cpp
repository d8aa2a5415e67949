#include "library/BuiltinPictures.h"

#include "base/Files.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include <QFileInfo>

namespace vellmora {

namespace {

bool holds(const QString& path, const QByteArray& bytes) {
    try {
        return !QFileInfo(path).isSymLink() && files::read(path, bytes.size()) == bytes;
    } catch (const Error&) {
        return false;
    }
}

}  // namespace

BuiltinPictures::BuiltinPictures(LibraryFolder folder, SystemFonts fonts)
    : m_folder(std::move(folder)), m_drawing(std::move(fonts)) {
    connect(&m_drawing, &BuiltinDrawing::drawn, this, &BuiltinPictures::drawn);
}

void BuiltinPictures::name(QList<StampPreset>& presets, const QList<Placed>& placed) {
    for (const Placed& stamp : placed) {
        bool isThere = false;
        for (StampPreset& preset : presets) {
            if (preset.builtinKey != stamp.definition.key)
                continue;
            preset.displayName = stamp.definition.displayName;
            isThere = true;
        }
        if (!isThere && stamp.isNew)
            presets.append(stamp.newPreset);
    }
}

void BuiltinPictures::draw(const QDateTime& now) {
    m_drawnAt = now;
    m_drawing.begin(builtinDefinitions(now));
}

QList<BuiltinPictures::Placed> BuiltinPictures::place(const QList<StampPreset>& presets, Missing missing) {
    const QList<DrawnBuiltin> stamps = m_drawing.finish();
    m_unplaced.clear();
    m_placedDay = m_drawnAt.toLocalTime().date();
    QList<Placed> placed;
    for (const DrawnBuiltin& stamp : stamps) {
        if (stamp.png.isEmpty()) {
            reportFailure(Error(Error::vellmoraDomain, 41,
                                QStringLiteral("Builtin-Stempel konnte nicht erzeugt werden.")));
            continue;
        }
        placeOne(stamp, presets, missing, placed);
    }
    return placed;
}

void BuiltinPictures::placeOne(const DrawnBuiltin& stamp, const QList<StampPreset>& presets, Missing missing,
                               QList<Placed>& placed) {
    Placed result{stamp.definition, {}, true};
    for (const StampPreset& preset : presets) {
        if (preset.builtinKey != stamp.definition.key)
            continue;
        result.isNew = false;
        // Nothing is lost with it: it is drawn anew at each start.
        if (!takePlace(preset, stamp.png, Durability::untilPowerLoss))
            m_unplaced.insert(preset.fileName, stamp.png);
    }
    result.newPreset.displayName = stamp.definition.displayName;
    result.newPreset.fileName = builtinFileName(stamp.definition.key);
    result.newPreset.createdAt = m_drawnAt;
    result.newPreset.builtinKey = stamp.definition.key;
    const bool mayBeMade = missing == Missing::isMade;
    if (!result.isNew || (mayBeMade && takePlace(result.newPreset, stamp.png, Durability::synced)))
        placed.append(result);
}

bool BuiltinPictures::takePlace(const StampPreset& preset, const QByteArray& png, Durability durability) {
    const QString path = m_folder.filePath(preset);
    try {
        if (!holds(path, png))
            files::putInPlace(path, png, durability);
        return true;
    } catch (const Error& error) {
        reportFailure(error);
        return false;
    }
}

std::optional<QByteArray> BuiltinPictures::unplaced(const StampPreset& preset) const {
    const auto found = m_unplaced.constFind(preset.fileName);
    if (!preset.isBuiltin() || found == m_unplaced.constEnd())
        return std::nullopt;
    return *found;
}

void BuiltinPictures::reportFailure(const Error& error) {
    std::printf("Builtin stamp setup failed: %s\n", error.what());
    std::fflush(stdout);
}

}  // namespace vellmora
