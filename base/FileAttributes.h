#pragma once

#include <QString>

namespace vellmora {

/// Gives an open new file, which only its owner may read so far, what the file at `path` has, whose place it
/// is to take: owner, group, permissions, access list and extended attributes. Where there is no file at
/// `path`, it gets the permissions that a new file has there.
///
/// At no moment may anybody do more with the new file than with the old one, but for the owners of both, who
/// can give themselves any right. What cannot be given, since the system does not allow it or a call fails,
/// leaves the new file open to fewer. Never fails.
void takeOverAttributes(int file, const QString& path);

/// Gives an open new file, which only its owner may read so far, the permissions that a new file has in
/// `folder`. Never fails.
void giveNewFileAttributes(int file, const QString& folder);

/// Permissions of a new file in `folder`: what the folder's default access list gives, or else the umask.
unsigned permissionsForNewFile(const QString& folder);

}  // namespace vellmora
