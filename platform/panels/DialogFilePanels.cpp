#include "platform/panels/DialogFilePanels.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QCompleter>
#include <QDir>
#include <QFileDialog>
#include <QLineEdit>
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

/// The toolkit's dialog, which leaves nothing open behind it.
class FileDialog : public QFileDialog {
public:
    FileDialog(const QString& title, ContentType type, const QUrl& folder)
        : QFileDialog(QApplication::activeWindow(), title) {
        setNameFilter(nameFilter(type));
        setDirectoryUrl(folder);
    }

protected:
    /// The list of completions is a window of its own, and a popup. Return accepts the dialog and leaves that
    /// list open. As long as a popup is open, the toolkit sends all keys and clicks there and overlooks that
    /// another window becomes active; so it must be closed before this one is.
    void done(int answer) override {
        for (const auto* field : findChildren<QLineEdit*>()) {
            if (field->completer())
                field->completer()->popup()->hide();
        }
        QFileDialog::done(answer);
    }
};

}  // namespace

DialogFilePanels::DialogFilePanels() : m_lastDirectory(firstFolder()) {}

std::optional<QUrl> DialogFilePanels::runModal(const OpenPanel& panel) {
    FileDialog dialog(panel.title, panel.contentType, m_lastDirectory);
    dialog.setAcceptMode(QFileDialog::AcceptOpen);
    dialog.setFileMode(QFileDialog::ExistingFile);
    return run(dialog);
}

std::optional<QUrl> DialogFilePanels::runModal(const SavePanel& panel) {
    FileDialog dialog(panel.title, panel.contentType, m_lastDirectory);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setDefaultSuffix(defaultSuffix(panel.contentType));
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
