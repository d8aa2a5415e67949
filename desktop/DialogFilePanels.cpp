#include "desktop/DialogFilePanels.h"

#include "desktop/FileDialog.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

namespace vellmora {

static QUrl firstFolder() {
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    return QUrl::fromLocalFile(QDir(documents).exists() ? documents : QDir::homePath());
}

DialogFilePanels::DialogFilePanels() : m_lastDirectory(firstFolder()) {}

DialogFilePanels::~DialogFilePanels() {
    delete m_dialog;
}

std::optional<QUrl> DialogFilePanels::runModal(const OpenPanel& panel) {
    return run(panel, m_lastDirectory);
}

std::optional<QUrl> DialogFilePanels::runModal(const SavePanel& panel) {
    return run(panel, folderFor(panel));
}

QUrl DialogFilePanels::folderFor(const SavePanel& panel) const {
    const QUrl folder = panel.source ? panel.source->adjusted(QUrl::RemoveFilename) : QUrl();
    return QFileInfo(folder.toLocalFile()).isDir() ? folder : m_lastDirectory;
}

template <typename Panel>
std::optional<QUrl> DialogFilePanels::run(const Panel& panel, const QUrl& folder) {
    if (!m_dialog)
        m_dialog = new FileDialog;
    auto url = m_dialog->run(panel, folder);
    if (url)
        m_lastDirectory = url->adjusted(QUrl::RemoveFilename);
    if (m_dialog->isDesktops())
        delete m_dialog;
    return url;
}

}  // namespace vellmora
