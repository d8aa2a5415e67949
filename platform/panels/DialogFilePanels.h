#pragma once

#include "platform/panels/FilePanels.h"

class QFileDialog;

namespace vellmora {

/// File panels by the toolkit: the desktop's own dialog where there is one.
class DialogFilePanels : public FilePanels {
public:
    /// The first panel starts in the user's documents folder, or at home where there is none, each later one
    /// where the one before ended.
    DialogFilePanels();

    /// The panels are modal to the window that is active when they open.
    std::optional<QUrl> runModal(const OpenPanel& panel) override;
    std::optional<QUrl> runModal(const SavePanel& panel) override;

private:
    std::optional<QUrl> run(QFileDialog& dialog);

    QUrl m_lastDirectory;
};

}  // namespace vellmora
