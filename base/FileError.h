#pragma once

#include "base/Error.h"

namespace vellmora {

/// What was tried when a file operation failed; names the action in the message.
enum class FileAction { read, write, create, remove, replace, createFolder };

/// German text of an `errno` value, a full sentence.
QString errnoText(int errorNumber);

/// Error of the POSIX domain: which file, what was tried, and why it failed.
Error fileError(FileAction action, const QString& path, int errorNumber);

/// The error of a save that a link would have led astray (see `files::resolved`).
Error foreignLinkError(const QString& path);

}  // namespace vellmora
