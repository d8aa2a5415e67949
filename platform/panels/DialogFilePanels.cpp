#include "platform/panels/DialogFilePanels.h"

#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QStandardPaths>

namespace vellmora {

namespace {

QString nameFilter(ContentType type) {
    switch (type) {
        case ContentType::pdf:
            return QStringLiteral("PDF-Dokumente (*.pdf *.PDF)");
        case ContentType::png:
            return QStringLiteral("PNG-Bilder (*.png *.PNG)");
    }
    return {};
}

QString defaultSuffix(ContentType type) {
    return type == ContentType::pdf ? QStringLiteral("pdf") : QStringLiteral("png");
}

QUrl firstFolder() {
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    return QUrl::fromLocalFile(QDir(documents).exists() ? documents : QDir::homePath());
}

}  // namespace

DialogFilePanels::DialogFilePanels() : m_lastDirectory(firstFolder()) {}

std::optional<QUrl> DialogFilePanels::runModal(const OpenPanel& panel) {
    QFileDialog dialog(QApplication::activeWindow(), panel.title);
    dialog.setAcceptMode(QFileDialog::AcceptOpen);
    dialog.setFileMode(QFileDialog::ExistingFile);
    dialog.setNameFilter(nameFilter(panel.contentType));
    dialog.setDirectoryUrl(m_lastDirectory);
    return run(dialog);
}

std::optional<QUrl> DialogFilePanels::runModal(const SavePanel& panel) {
    QFileDialog dialog(QApplication::activeWindow(), panel.title);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setNameFilter(nameFilter(panel.contentType));
    dialog.setDefaultSuffix(defaultSuffix(panel.contentType));
    dialog.setDirectoryUrl(m_lastDirectory);
    dialog.selectFile(panel.nameFieldStringValue);
    return run(dialog);
}

std::optional<QUrl> DialogFilePanels::run(QFileDialog& dialog) {
    if (dialog.exec() != QDialog::Accepted)
        return std::nullopt;
    m_lastDirectory = dialog.directoryUrl();
    const QList<QUrl> urls = dialog.selectedUrls();
    return urls.isEmpty() ? std::nullopt : std::optional(urls.first());
}

}  // namespace vellmora
