#pragma once

#include <optional>

#include <QString>
#include <QUrl>

namespace vellmora {

enum class ContentType { pdf, png };

/// An open panel for one existing file of one type; folders cannot be chosen.
struct OpenPanel {
    QString title;
    ContentType contentType = ContentType::pdf;
};

/// A save panel for one type of file; new folders can be made in it.
struct SavePanel {
    QString title;
    ContentType contentType = ContentType::pdf;
    QString nameFieldStringValue;  ///< the proposed file name, without a folder
    std::optional<QUrl> source;    ///< what is saved under another name; the panel may start in its folder
};

/// Modal file panels. An interface, so that a test can answer in the user's place.
class FilePanels {
public:
    virtual ~FilePanels() = default;
    /// The chosen file's URL, its name that of a file of the type; nothing when the user cancels.
    virtual std::optional<QUrl> runModal(const OpenPanel& panel) = 0;
    virtual std::optional<QUrl> runModal(const SavePanel& panel) = 0;
};

}  // namespace vellmora
