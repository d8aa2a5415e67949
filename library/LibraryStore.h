#pragma once

#include "base/Clock.h"
#include "library/LibraryFolder.h"
#include "library/StampPreset.h"

#include <functional>
#include <optional>
#include <utility>

#include <QByteArray>
#include <QList>

namespace vellmora {

/// The metadata of all presets, in a file that all windows and programs share.
///
/// Every change is made to what the file holds at that moment: locked, read, changed, written as a whole. So
/// no change of another program is lost, and each is seen here with the next change at the latest. What
/// `separateCopy` gives can be saved on another thread, as another program would.
class LibraryStore {
public:
    /// Makes one change in a list. It may be made more than once: where the file cannot be written now, again
    /// with the next change. A second time it must change nothing.
    using Change = std::function<void(QList<StampPreset>&)>;

    LibraryStore(LibraryFolder folder, Clock clock);

    /// Built-ins first, then by date of use (newest first), then by name.
    const QList<StampPreset>& presets() const { return m_presets; }

    /// Reads the file for the first time. Throws `Error` where the folders cannot be made, or the file cannot
    /// be read; the list is empty then.
    void load();
    /// What the file holds now, where another program has changed it and it can be read; else nothing. To be
    /// handed to `adopt`.
    std::optional<QList<StampPreset>> news();
    void adopt(QList<StampPreset> presets) { m_presets = std::move(presets); }

    /// Makes the change here. `save` makes it in the file.
    void add(const Change& change);
    /// Makes all changes since the last time in the file. Throws `Error` where it cannot be written; they are
    /// made with the next call then. An unreadable file is kept aside before it is replaced.
    void save();
    /// Shares no list with this one: a list that two threads share tells by an unordered read when it may be
    /// changed in place.
    LibraryStore separateCopy() const;
    /// How many changes are in the file, of all that were ever added here.
    qsizetype savedChanges() const { return m_savedChanges; }
    /// A copy has been saved and has so many saved changes: they are not to be made again.
    void forgetSaved(qsizetype savedChanges);

private:
    /// What the file is. Where it is good, what it holds is in `m_stored`.
    enum class Reading { good, absent, damaged };
    /// Throws `Error` where the file cannot be read.
    Reading read();
    Reading readForSaving();
    void keepAside();
    /// Those of the file whose pictures are there, with all changes made, in order.
    QList<StampPreset> listed() const;

    LibraryFolder m_folder;
    Clock m_clock;
    QList<StampPreset> m_stored;  ///< as they were last read or written
    QByteArray m_text;            ///< the file's bytes then
    bool m_isKnown = false;       ///< it could be read once, or was not there
    QList<StampPreset> m_presets;
    QList<Change> m_unsaved;
    qsizetype m_savedChanges = 0;
};

}  // namespace vellmora
