#include "library/LibraryStore.h"

#include "base/Error.h"
#include "base/FileLock.h"
#include "base/Files.h"
#include "base/TemporaryFile.h"
#include "base/Text.h"
#include "library/StampPresetJson.h"

#include <algorithm>
#include <cerrno>
#include <optional>
#include <utility>

#include <QSet>

namespace vellmora {

namespace {

constexpr qint64 maxFileSize = 64 << 20;  // in bytes: two hundred thousand entries

bool comesBefore(const StampPreset& a, const StampPreset& b) {
    if (a.isBuiltin() != b.isBuiltin())
        return a.isBuiltin();
    const QDateTime dateOfA = a.lastUsedAt.value_or(a.createdAt);
    const QDateTime dateOfB = b.lastUsedAt.value_or(b.createdAt);
    if (dateOfA != dateOfB)
        return dateOfA > dateOfB;
    return compareNames(a.displayName, b.displayName) < 0;
}

/// Makes all ids different. An entry with the id of an earlier one gets a new id, so that both are kept. It
/// is the same one at each reading.
void makeIDsUnique(QList<StampPreset>& presets) {
    QSet<QUuid> seen;
    seen.reserve(presets.size());
    for (StampPreset& preset : presets) {
        while (seen.contains(preset.id))
            preset.id = QUuid::createUuidV5(preset.id, preset.fileName);
        seen.insert(preset.id);
    }
}

/// A picture that the user has imported, or that an entry of the user's shows, is never drawn over: an entry
/// that calls it built-in is the user's, too. The names of the built-in pictures are the program's own.
void returnPicturesOfUsers(QList<StampPreset>& presets) {
    const auto mayBeOfUser = [](const StampPreset& preset) {
        return preset.isBuiltin() && preset.fileName != builtinFileName(*preset.builtinKey);
    };
    if (std::none_of(presets.cbegin(), presets.cend(), mayBeOfUser))
        return;
    QSet<QString> pictures;
    for (const StampPreset& preset : presets) {
        if (!preset.isBuiltin() || isImportedFileName(preset.fileName))
            pictures.insert(preset.fileName);
    }
    for (StampPreset& preset : presets) {
        if (mayBeOfUser(preset) && pictures.contains(preset.fileName))
            preset.builtinKey.reset();
    }
}

}  // namespace

LibraryStore::LibraryStore(LibraryFolder folder, Clock clock)
    : m_folder(std::move(folder)), m_clock(std::move(clock)) {}

LibraryStore::Reading LibraryStore::read() {
    const QString path = m_folder.metadataPath();
    if (files::isGone(path))
        return Reading::absent;
    const QByteArray text = files::read(path, maxFileSize);
    if (text != m_text) {
        std::optional<QList<StampPreset>> presets = decodePresets(text);
        if (!presets)
            return Reading::damaged;
        returnPicturesOfUsers(*presets);
        makeIDsUnique(*presets);
        m_stored = std::move(*presets);
        m_text = text;
    }
    return Reading::good;
}

/// A file that was readable before and is not now is left alone: it is the disk that fails. One that never
/// was is replaced, as is one that is too large for a library.
LibraryStore::Reading LibraryStore::readForSaving() {
    try {
        return read();
    } catch (const Error& error) {
        if (m_isKnown && error.code() != EFBIG)
            throw;
        return Reading::damaged;
    }
}

void LibraryStore::load() {
    m_folder.ensureDirectories();
    for (const QString& folder : {m_folder.root(), m_folder.stampsDirectory(), m_folder.decodingDirectory()})
        removeStaleTemporaryFiles(folder);
    if (read() == Reading::damaged) {
        throw Error(Error::vellmoraDomain, 2,
                    QStringLiteral("Die Stempelbibliothek konnte nicht gelesen werden."));
    }
    m_isKnown = true;
    m_presets = listed();
}

std::optional<QList<StampPreset>> LibraryStore::news() {
    try {
        if (read() != Reading::good)
            return std::nullopt;
    } catch (const Error&) {
        return std::nullopt;
    }
    m_isKnown = true;
    QList<StampPreset> presets = listed();
    return presets == m_presets ? std::nullopt : std::optional(std::move(presets));
}

QList<StampPreset> LibraryStore::listed() const {
    QList<StampPreset> presets = m_folder.withPictures(m_stored);
    for (const Change& change : m_unsaved)
        change(presets);
    // Mostly the file has them in this order.
    if (!std::is_sorted(presets.cbegin(), presets.cend(), comesBefore))
        std::stable_sort(presets.begin(), presets.end(), comesBefore);
    return presets;
}

void LibraryStore::add(const Change& change) {
    m_unsaved.append(change);
    change(m_presets);
    std::stable_sort(m_presets.begin(), m_presets.end(), comesBefore);
}

void LibraryStore::save() {
    m_folder.ensureDirectories();
    const FileLock lock(m_folder.lockPath());
    const Reading reading = readForSaving();
    // A file that somebody has deleted or damaged takes nothing from what is known here.
    const QList<StampPreset> presets = listed();
    if (reading == Reading::damaged)
        keepAside();
    const QByteArray text = encodePresets(presets);
    files::writeAtomically(m_folder.metadataPath(), text);
    m_text = text;
    m_stored = presets;
    m_presets = presets;
    m_savedChanges += m_unsaved.size();
    m_unsaved.clear();
    m_isKnown = true;
}

LibraryStore LibraryStore::separateCopy() const {
    LibraryStore copy = *this;
    copy.m_stored.detach();
    copy.m_presets.detach();
    copy.m_unsaved.detach();
    return copy;
}

void LibraryStore::forgetSaved(qsizetype savedChanges) {
    for (; m_savedChanges < savedChanges; ++m_savedChanges)
        m_unsaved.takeFirst()(m_stored);
}

/// Where its bytes can be read a copy is written beside the file, else the file itself is renamed.
void LibraryStore::keepAside() {
    const QString path = m_folder.metadataPath();
    const QString aside = m_folder.unusedAsidePath(m_clock());
    std::optional<QByteArray> bytes;
    try {
        bytes = files::read(path, maxFileSize);
    } catch (const Error&) {
        files::rename(path, aside);
    }
    if (bytes)
        files::writeAtomically(aside, *bytes);
}

}  // namespace vellmora
