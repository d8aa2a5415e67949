#pragma once

#include "base/Image.h"

#include <optional>

#include <QString>

namespace vellmora {

/// Decodes pictures of the library, and notes in a folder which ones are under way. A note that nobody holds
/// any more tells that the program ended over that picture, or that decoding it took all the time that there
/// is.
class PictureMarks {
public:
    explicit PictureMarks(QString folder);

    enum class Caution {
        passOver,  ///< a picture over which the program ended is taken for a missing one
        dare       ///< it is decoded all the same: the user wants this very picture
    };

    /// Names the file at `path` and its content. Empty where there is none.
    static QString version(const QString& path);

    /// The picture in the file at `path`; nothing where it is missing, cannot be decoded or is passed over. A
    /// note is about one version. A picture that can be decoded is no longer passed over. Any thread.
    std::optional<Image> decode(const QString& path, Caution caution) const;

    /// Removes the notes about pictures that are not in the folder, or not in that version any more.
    void sweep(const QString& pictures) const;

private:
    QString m_folder;
};

}  // namespace vellmora
