#pragma once

#include "base/Error.h"
#include "base/TemporaryFile.h"
#include "library/BuiltinDrawing.h"
#include "library/LibraryFolder.h"
#include "library/StampPreset.h"

#include <optional>

#include <QDate>
#include <QHash>
#include <QList>
#include <QObject>

namespace vellmora {

/// The pictures of the built-in stamps in the library's folder: draws those of a day, and puts each into the
/// place of whatever has its name. One whose place cannot be taken is kept in memory, so that no other day's
/// is shown or inserted.
class BuiltinPictures : public QObject {
    Q_OBJECT

public:
    /// What is done for a stamp that has no preset.
    enum class Missing { isMade, isLeftOut };
    /// A stamp of the day whose picture is there.
    struct Placed {
        BuiltinStampDefinition definition;
        StampPreset newPreset;  ///< for the list, where there is none of this stamp
        bool isNew = false;
    };

    BuiltinPictures(LibraryFolder folder, SystemFonts fonts);

    /// Gives the presets of the stamps the names of their day, and appends those that are new.
    static void name(QList<StampPreset>& presets, const QList<Placed>& placed);

    /// Whether the pictures are those of the day.
    bool areOf(const QDate& day) const { return m_placedDay == day; }
    /// Begins to draw those of the day, on another thread.
    void draw(const QDateTime& now);
    bool isDrawing() const { return m_drawing.isUnderWay(); }
    /// Waits for the drawing and puts the pictures into their places. Each failure is printed; it concerns
    /// one stamp.
    QList<Placed> place(const QList<StampPreset>& presets, Missing missing);

    /// The picture that could not be put into its place.
    std::optional<QByteArray> unplaced(const StampPreset& preset) const;

    /// The one line that tells of a built-in stamp that could not be made.
    static void reportFailure(const Error& error);

Q_SIGNALS:
    /// The drawing has ended: `place` need not wait.
    void drawn();

private:
    void placeOne(const DrawnBuiltin& stamp, const QList<StampPreset>& presets, Missing missing,
                  QList<Placed>& placed);
    bool takePlace(const StampPreset& preset, const QByteArray& png, Durability durability);

    LibraryFolder m_folder;
    BuiltinDrawing m_drawing;
    QDateTime m_drawnAt;
    std::optional<QDate> m_placedDay;
    QHash<QString, QByteArray> m_unplaced;  ///< by file name
};

}  // namespace vellmora
