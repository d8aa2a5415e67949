#pragma once

#include "platform/panels/FilePanels.h"

namespace vellmora {

class FileDialog;

/// File panels by the toolkit: the desktop's own dialog where there is one.
class DialogFilePanels : public FilePanels {
public:
    /// A save panel starts in the folder of its source. Any other starts where the one before ended, the
    /// first one in the user's documents folder, or at home where there is none.
    DialogFilePanels();

    /// The panels are modal to the window that is active when they open.
    std::optional<QUrl> runModal(const OpenPanel& panel) override;
    std::optional<QUrl> runModal(const SavePanel& panel) override;

private:
    QUrl folderFor(const SavePanel& panel) const;
    std::optional<QUrl> run(FileDialog& dialog);

    QUrl m_lastDirectory;
};

}  // namespace vellmora
