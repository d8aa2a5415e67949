#include "platform/panels/DialogFilePanels.h"

#include "platform/panels/FileDialog.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

namespace vellmora {

static QUrl firstFolder() {
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    return QUrl::fromLocalFile(QDir(documents).exists() ? documents : QDir::homePath());
}

DialogFilePanels::DialogFilePanels() : m_lastDirectory(firstFolder()) {}

std::optional<QUrl> DialogFilePanels::runModal(const OpenPanel& panel) {
    FileDialog dialog(panel.title, panel.contentType, m_lastDirectory);
    dialog.setAcceptMode(QFileDialog::AcceptOpen);
    dialog.setFileMode(QFileDialog::ExistingFile);
    return run(dialog);
}

std::optional<QUrl> DialogFilePanels::runModal(const SavePanel& panel) {
    FileDialog dialog(panel.title, panel.contentType, folderFor(panel));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.selectFile(panel.nameFieldStringValue);
    return run(dialog);
}

QUrl DialogFilePanels::folderFor(const SavePanel& panel) const {
    const QUrl folder = panel.source ? panel.source->adjusted(QUrl::RemoveFilename) : QUrl();
    return QFileInfo(folder.toLocalFile()).isDir() ? folder : m_lastDirectory;
}

std::optional<QUrl> DialogFilePanels::run(FileDialog& dialog) {
    const std::optional<QUrl> url = dialog.run();
    if (url)
        m_lastDirectory = dialog.directoryUrl();
    return url;
}

}  // namespace vellmora
