#include "platform/panels/DialogFilePanels.h"

#include <chrono>

#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QStandardPaths>
#include <QTimer>

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
    QFileDialog& dialog = makeDialog(panel.title, panel.contentType);
    dialog.setAcceptMode(QFileDialog::AcceptOpen);
    dialog.setFileMode(QFileDialog::ExistingFile);
    return run(dialog);
}

std::optional<QUrl> DialogFilePanels::runModal(const SavePanel& panel) {
    QFileDialog& dialog = makeDialog(panel.title, panel.contentType);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setDefaultSuffix(defaultSuffix(panel.contentType));
    dialog.selectFile(panel.nameFieldStringValue);
    return run(dialog);
}

QFileDialog& DialogFilePanels::makeDialog(const QString& title, ContentType type) const {
    auto* dialog = new QFileDialog(QApplication::activeWindow(), title);
    dialog->setNameFilter(nameFilter(type));
    dialog->setDirectoryUrl(m_lastDirectory);
    return *dialog;
}

std::optional<QUrl> DialogFilePanels::run(QFileDialog& dialog) {
    const int answer = dialog.exec();
    // Not at once: that takes as long as loading a document, which the user waits for.
    QTimer::singleShot(std::chrono::seconds(1), &dialog, &QObject::deleteLater);
    if (answer != QDialog::Accepted)
        return std::nullopt;
    m_lastDirectory = dialog.directoryUrl();
    const QList<QUrl> urls = dialog.selectedUrls();
    return urls.isEmpty() ? std::nullopt : std::optional(urls.first());
}

}  // namespace vellmora
