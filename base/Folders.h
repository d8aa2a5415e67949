#pragma once

#include <QString>

namespace vellmora {

/// Where the program keeps what outlives it. Handed in, so that a test can use a folder of its own.
struct Folders {
    QString applicationSupport;  ///< the user's data folder; empty where the system knows none
    QString temporary;           ///< takes its place then
    QString defaultsFile;        ///< the file of the user's settings
    QString thumbnailsFile{};  ///< in the user's cache, empty where there is none; what it holds may be lost

    /// The folders of the user who runs the program (XDG base directories).
    static Folders ofUser();
};

}  // namespace vellmora
