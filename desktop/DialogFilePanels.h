#pragma once

#include "base/FilePanels.h"

#include <QPointer>

namespace vellmora {

class FileDialog;

/// File panels by Qt: the desktop's own dialog where there is one.
class DialogFilePanels : public FilePanels {
public:
    /// A save panel starts in the folder of its source. Any other starts where the one before ended, the
    /// first one in the user's documents folder, or at home where there is none.
    DialogFilePanels();
    ~DialogFilePanels() override;
    DialogFilePanels(const DialogFilePanels&) = delete;
    DialogFilePanels& operator=(const DialogFilePanels&) = delete;

    /// The panels are modal to the window that is active when they open.
    std::optional<QUrl> runModal(const OpenPanel& panel) override;
    std::optional<QUrl> runModal(const SavePanel& panel) override;

private:
    QUrl folderFor(const SavePanel& panel) const;
    template <typename Panel>
    std::optional<QUrl> run(const Panel& panel, const QUrl& folder);

    QUrl m_lastDirectory;
    QPointer<FileDialog> m_dialog;  ///< kept from one panel to the next; its parent deletes it too
};

}  // namespace vellmora
