#include "base/FileAttributes.h"

#include "base/AccessList.h"

#include <cerrno>
#include <fstream>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <QFile>
#include <QFileInfo>
#include <QList>

namespace vellmora {

namespace {

constexpr mode_t readAndWrite = S_IRUSR | S_IWUSR;

/// Calls `get` with a buffer that is large enough for its answer; nothing where it fails (`errno`).
template <typename Get>
std::optional<QByteArray> growing(Get get) {
    for (;;) {
        const ssize_t needed = get(nullptr, size_t(0));
        if (needed < 0)
            return std::nullopt;
        if (needed == 0)
            return QByteArray();
        QByteArray buffer(needed, Qt::Uninitialized);
        const ssize_t length = get(buffer.data(), static_cast<size_t>(needed));
        if (length >= 0)
            return buffer.first(length);
        if (errno != ERANGE)  // else it has grown meanwhile
            return std::nullopt;
    }
}

std::optional<QByteArray> attribute(const QByteArray& path, const char* name) {
    return growing([&](char* buffer, size_t size) { return ::lgetxattr(path, name, buffer, size); });
}

bool setAttribute(int file, const QByteArray& name, const QByteArray& value) {
    return ::fsetxattr(file, name, value.constData(), static_cast<size_t>(value.size()), 0) == 0;
}

/// Whether an attribute that cannot be had is not there, rather than out of reach.
bool isAbsent(int error) {
    return error == ENODATA || error == ENOTSUP;
}

/// Names of all extended attributes; nothing where that cannot be told.
std::optional<QList<QByteArray>> attributeNames(const QByteArray& path) {
    const auto names = growing([&](char* buffer, size_t size) { return ::llistxattr(path, buffer, size); });
    if (!names)
        return isAbsent(errno) ? std::optional(QList<QByteArray>()) : std::nullopt;
    QList<QByteArray> list = names->split('\0');
    list.removeAll({});
    return list;
}

/// Access lists, of which network file systems have kinds of their own, are what is in this name space.
bool isAccessList(const QByteArray& name) {
    return name.startsWith("system.");
}

/// What a program was allowed for the content that it had, and checksums of that content.
bool isForContent(const QByteArray& name) {
    return name == "security.capability" || name == "security.ima" || name == "security.evm";
}

void copyPlainAttributes(const QByteArray& from, int to, const QList<QByteArray>& names) {
    for (const QByteArray& name : names) {
        if (isAccessList(name) || isForContent(name))
            continue;
        if (const auto value = attribute(from, name))
            setAttribute(to, name, *value);
    }
}

struct Ownership {
    bool isOwnerKept = false;
    bool isGroupKept = false;
};

Ownership takeOverOwnership(int file, const struct stat& original) {
    struct stat now {};
    if (::fstat(file, &now) != 0)
        return {};
    // Both at once: a file that is another's already could not be given to a group any more.
    if (now.st_uid != original.st_uid && ::fchown(file, original.st_uid, original.st_gid) == 0)
        return {true, true};
    const bool isGroupKept =
        now.st_gid == original.st_gid || ::fchown(file, static_cast<uid_t>(-1), original.st_gid) == 0;
    return {now.st_uid == original.st_uid, isGroupKept};
}

/// Permissions of the original, for what could be kept of its owner and group. Who was in its group is one of
/// the others where that is not kept, and some of the others are in the new group: neither may have more than
/// they had.
mode_t permissionsFor(mode_t mode, const Ownership& ownership) {
    mode &= S_IRWXU | S_IRWXG | S_IRWXO;
    if (!ownership.isOwnerKept)
        mode |= readAndWrite;  // the new owner has just written it
    if (ownership.isGroupKept)
        return mode;
    const mode_t shared = (mode >> 3) & mode & S_IRWXO;
    return (mode & S_IRWXU) | (shared << 3) | shared;
}

/// The same for an access list. The new group gets nothing, since an entry of the list may keep some of its
/// members out.
void narrow(AccessList& list, const Ownership& ownership) {
    using enum AccessList::Entry;
    if (!ownership.isOwnerKept)
        list.setPermissions(owner, list.permissions(owner).value_or(0) | readAndWrite >> 6);
    if (ownership.isGroupKept)
        return;
    const unsigned group = list.permissions(owningGroup).value_or(0) & list.permissions(mask).value_or(7);
    list.setPermissions(others, list.permissions(others).value_or(0) & group);
    list.setPermissions(owningGroup, 0);
}

/// Gives the file an access list of the original. False where it has none of it.
bool takeOverAccessList(const QByteArray& from, int to, const QByteArray& name, const Ownership& ownership) {
    const auto bytes = attribute(from, name);
    if (!bytes)
        return false;
    if (name != AccessList::attributeName)  // of a kind that cannot be narrowed here
        return ownership.isOwnerKept && ownership.isGroupKept && setAttribute(to, name, *bytes);
    auto list = AccessList::parse(*bytes);
    if (!list)
        return false;
    narrow(*list, ownership);
    return setAttribute(to, name, list->bytes());
}

/// The last step, the first that opens the file to others.
void takeOverAccess(const QByteArray& from, int to, const std::optional<QList<QByteArray>>& names,
                    const Ownership& ownership, mode_t permissions) {
    bool isOpen = names.has_value();
    bool hasList = false;
    for (const QByteArray& name : names.value_or(QList<QByteArray>())) {
        if (isAccessList(name)) {
            hasList = takeOverAccessList(from, to, name, ownership);
            isOpen = isOpen && hasList;
        }
    }
    if (isOpen && hasList)
        return;  // the list holds the permissions, too
    // Else a list that the file got from its folder would let in those whom the original keeps out.
    isOpen = isOpen && (::fremovexattr(to, AccessList::attributeName) == 0 || isAbsent(errno));
    // A file system without permissions (FAT) may refuse; all its files are alike then.
    [[maybe_unused]] const int ignored = ::fchmod(to, isOpen ? permissions : permissions & S_IRWXU);
}

/// umask(2) tells it only by changing it: two threads that ask at once may leave it changed for good.
mode_t currentUmask() {
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;) {
        mode_t mask = 0;
        if (word == "Umask:" && status >> std::oct >> mask)
            return mask;
    }
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return mask;
}

}  // namespace

void takeOverAttributes(int file, const QString& path) {
    const QByteArray name = QFile::encodeName(path);
    struct stat original {};
    if (::lstat(name, &original) != 0) {
        if (errno == ENOENT)
            giveNewFileAttributes(file, QFileInfo(path).path());
        return;
    }
    if (!S_ISREG(original.st_mode))
        return;
    const auto names = attributeNames(name);
    copyPlainAttributes(name, file, names.value_or(QList<QByteArray>()));
    const Ownership ownership = takeOverOwnership(file, original);
    takeOverAccess(name, file, names, ownership, permissionsFor(original.st_mode, ownership));
}

void giveNewFileAttributes(int file, const QString& folder) {
    [[maybe_unused]] const int ignored = ::fchmod(file, permissionsForNewFile(folder));
}

unsigned permissionsForNewFile(const QString& folder) {
    using enum AccessList::Entry;
    constexpr unsigned all = S_IRUSR | S_IWUSR | S_IRGRP | S_IWGRP | S_IROTH | S_IWOTH;
    const auto bytes = attribute(QFile::encodeName(folder), AccessList::defaultAttributeName);
    if (!bytes)
        return isAbsent(errno) ? all & ~currentUmask() : readAndWrite;
    const auto list = AccessList::parse(*bytes);
    if (!list)
        return readAndWrite;
    const unsigned group = list->permissions(mask).value_or(list->permissions(owningGroup).value_or(0));
    return all &
           (list->permissions(owner).value_or(0) << 6 | group << 3 | list->permissions(others).value_or(0));
}

}  // namespace vellmora
