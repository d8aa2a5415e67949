#pragma once

#include "base/Clock.h"
#include "base/FilePanels.h"
#include "base/Folders.h"
#include "base/Image.h"
#include "base/SystemFonts.h"
#include "base/UserDefaults.h"
#include "library/BuiltinFiles.h"
#include "library/StampPreset.h"

#include <future>
#include <optional>

#include <QList>
#include <QObject>
#include <QUrl>

namespace vellmora {

/// The persistent stamp library: picture files in a folder, one metadata file beside it, and two settings.
///
/// Loads synchronously when it is made, and draws the built-in stamps anew: at once where that changes more
/// than their pictures, else with `redrawDueBuiltins`, or when somebody asks for one of them. Every change
/// rewrites the metadata file as a whole; changes that another process makes to the folder are seen at the
/// next start. Operations that can fail throw `Error`.
class StampLibrary : public QObject {
    Q_OBJECT

public:
    static const QString metadataFileName;
    static const QString selectedPresetDefaultsKey;
    static const QString recentPresetDefaultsKey;
    static constexpr qsizetype maxStoredRecents = 12;
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
    const QList<StampPreset>& presets() const { return m_presets; }
    const std::optional<QUuid>& selectedPresetID() const { return m_selectedPresetID; }

    /// The preset that the next insert uses: the selected one, else the first. Nothing where the library is
    /// empty.
    std::optional<StampPreset> selectedPreset() const;
    /// Selects the id without checking that such a preset exists.
    void selectPreset(const QUuid& id);
    /// At most eight, most recently used first.
    QList<StampPreset> recentPresets() const;
    /// Marks a preset as used now. Does nothing for an unknown id. Throws no `Error`: where the library
    /// cannot be saved now, it is saved with the next change.
    void recordUse(const QUuid& id);

    /// Copies the file into the library, selects the new entry and puts it first among the recent ones.
    StampPreset importPreset(const QUrl& url);
    /// Deletes the entry and its file. Does nothing for an unknown id. A built-in stamp comes back at the
    /// next start.
    void removePreset(const QUuid& id);
    /// The preset's picture, read from its file at every call. Nothing where the file is missing or cannot be
    /// decoded.
    std::optional<Image> image(const StampPreset& preset);
    /// The same picture, for a view that loads it later on another thread.
    DeferredPicture deferredPicture(const StampPreset& preset) const;
    /// Begins to draw the built-in stamps anew, where that is still to be done. It takes a thread of its own
    /// a while: it is called once the window is there.
    void redrawDueBuiltins();
    /// Asks the user for a PNG file. Nothing where the user cancels.
    std::optional<QUrl> openImportPanel();

Q_SIGNALS:
    /// Emitted before each change of `presets` or `selectedPresetID`.
    void objectWillChange();

private:
    QString libraryRoot() const;
    QString stampsDirectory() const;
    QString metadataPath() const;
    QString filePath(const StampPreset& preset) const;

    void ensureLibraryDirectories() const;
    void loadLibrary();
    QList<StampPreset> loadPresets() const;
    QString unusedAsidePath() const;
    void keepUnreadableMetadata();
    void persistMetadata();
    void sortPresets();

    void setSelectedPresetID(const std::optional<QUuid>& id);
    void selectFirstPreset();
    void restoreSelection();
    QList<QUuid> recentPresetIDs() const;
    void storeRecentPresetIDs(const QList<QUuid>& ids);
    void prependRecent(const QUuid& id);
    void removeRecent(const QUuid& id);

    void ensureBuiltinPresets();
    /// Whether views may have asked for the pictures that are drawn anew, and are to be told of other ones.
    enum class Earlier { areNotShown, mayBeShown };
    /// Those that are due, on a thread of Qt's.
    void redrawBuiltins(Earlier pictures);
    /// For whoever reads or removes the picture of a built-in stamp.
    void finishRedrawing();
    void showRedrawnBuiltins();
    BuiltinFile builtinFile(const BuiltinStampDefinition& definition);
    bool isCurrent(const BuiltinStampDefinition& definition);
    void adoptBuiltin(const BuiltinStampDefinition& definition, const QDateTime& now);

    QList<StampPreset>::iterator findBuiltin(const BuiltinStampDefinition& definition);
    QList<StampPreset>::iterator findPreset(const QUuid& id);
    QList<StampPreset>::const_iterator findPreset(const QUuid& id) const;

    Environment m_environment;
    UserDefaults m_defaults;
    QList<StampPreset> m_presets;
    std::optional<QUuid> m_selectedPresetID;
    bool m_hasUnreadableMetadata = false;
    QList<BuiltinFile> m_dueBuiltins;  ///< to be drawn anew
    std::shared_future<BuiltinFilesOutcome> m_redrawing;
    int m_builtinVersion = 0;  ///< of their pictures
};

}  // namespace vellmora
