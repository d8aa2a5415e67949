#pragma once

#include "base/Clock.h"
#include "base/FilePanels.h"
#include "base/Folders.h"
#include "base/Image.h"
#include "base/SerialQueue.h"
#include "base/SystemFonts.h"
#include "base/UserDefaults.h"
#include "library/BuiltinPictures.h"
#include "library/LibraryFolder.h"
#include "library/LibraryStore.h"
#include "library/PictureMarks.h"
#include "library/RecentPresets.h"
#include "library/StampPreset.h"
#include "library/Today.h"

#include <optional>

#include <QFileSystemWatcher>
#include <QList>
#include <QObject>
#include <QUrl>

namespace vellmora {

/// The persistent stamp library: picture files in a folder, one metadata file beside it, and two settings.
///
/// All windows and programs of the user share it. A change is made to what is on the disk at that moment, and
/// what others change there is shown as soon as the system tells of it, else with the next change. The
/// selection is the library object's own while it lives; stored is the one that was chosen last.
///
/// Loads synchronously when it is made. The built-in stamps are those of the present day, also while a window
/// stays open over midnight. Operations that can fail throw `Error`. Main thread only.
class StampLibrary : public QObject {
    Q_OBJECT

public:
    static const QString metadataFileName;
    static const QString selectedPresetDefaultsKey;
    static const QString recentPresetDefaultsKey;
    static constexpr qsizetype maxStoredRecents = RecentPresets::maxStored;
    static constexpr qsizetype maxShownRecents = 8;

    /// What the library needs from its surroundings. `panels` must outlive the library.
    struct Environment {
        Folders folders;
        Clock clock;
        FilePanels& panels;
        SystemFonts fonts;
    };

    explicit StampLibrary(Environment environment);
    ~StampLibrary() override;

    /// Built-ins first, then by date of use (newest first), then by name.
    const QList<StampPreset>& presets() const { return m_store.presets(); }
    const std::optional<QUuid>& selectedPresetID() const { return m_selectedPresetID; }

    /// The preset that the next insert uses: the selected one, else the first. Nothing where the library is
    /// empty.
    std::optional<StampPreset> selectedPreset() const;
    /// Selects the id without checking that such a preset exists.
    void selectPreset(const QUuid& id);
    /// At most eight, most recently used first.
    QList<StampPreset> recentPresets() const;
    /// Marks a preset as used now. Does nothing for an unknown id. Returns at once, and throws no `Error`:
    /// the library is saved on another thread, and where that cannot be done now, with the next change.
    void recordUse(const QUuid& id);
    /// Waits until that is done.
    void finishSaving();

    /// Copies the file into the library, selects the new entry and puts it first among the recent ones. A
    /// file that is no PNG which can be decoded is refused.
    StampPreset importPreset(const QUrl& url);
    /// Deletes the entry and its file. Does nothing for an unknown id. A built-in stamp comes back at the
    /// next start.
    void removePreset(const QUuid& id);
    /// The preset's picture, read from its file at every call; a built-in stamp's is that of this day.
    /// Nothing where the file is missing or cannot be decoded.
    std::optional<Image> image(const StampPreset& preset);
    /// The same picture, for a view that loads it later on another thread. A picture over which the program
    /// has ended counts as one that cannot be decoded.
    DeferredPicture deferredPicture(const StampPreset& preset) const;
    /// The preset as it is now: a built-in one's name changes with the day. Itself where it is gone.
    StampPreset current(const StampPreset& preset) const;
    /// Begins to draw the built-in stamps of this day, where that is still to be done. It takes a thread of
    /// its own a while: it is called once the window is there.
    void redrawDueBuiltins();
    /// Asks the user for a PNG file. Nothing where the user cancels.
    std::optional<QUrl> openImportPanel();

Q_SIGNALS:
    /// Emitted with each change of `presets`, `selectedPresetID`, `recentPresets` or a picture. All of it is
    /// as it will be on the next turn of the event loop.
    void objectWillChange();
    /// An entry is gone, and its picture with it, here or in another window.
    void presetRemoved();

private:
    void loadLibrary();
    void watch();
    void showOthersChanges(const QString& folder);
    void adopt(const QList<StampPreset>& presets);
    void add(const LibraryStore::Change& change);
    void save();
    void saveLater();

    void setSelectedPresetID(const std::optional<QUuid>& id);
    std::optional<QUuid> firstPresetID() const;
    void restoreSelection();
    std::optional<StampPreset> preset(const std::optional<QUuid>& id) const;

    void ensureBuiltinPresets();
    void bringBuiltinsUpToDate(BuiltinPictures::Missing missing);
    void nameBuiltins(const QList<BuiltinPictures::Placed>& placed);

    Environment m_environment;
    LibraryFolder m_folder;
    LibraryStore m_store;
    UserDefaults m_defaults;
    RecentPresets m_recents{m_defaults};
    PictureMarks m_marks;
    Today m_today;
    BuiltinPictures m_builtins;
    QFileSystemWatcher m_watcher;
    std::optional<QUuid> m_selectedPresetID;
    SerialQueue m_writer;  ///< ends before all else here
};

}  // namespace vellmora
