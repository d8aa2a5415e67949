#include "platform/panels/FileDialog.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QCompleter>
#include <QDir>
#include <QFileInfo>
#include <QLineEdit>
#include <QToolTip>

namespace vellmora {

static QString nameFilter(ContentType type) {
    switch (type) {
        case ContentType::pdf:
            return QStringLiteral("PDF-Dokumente (*.pdf *.PDF)");
        case ContentType::png:
            return QStringLiteral("PNG-Bilder (*.png *.PNG)");
    }
    return {};
}

static QString ending(ContentType type) {
    return type == ContentType::pdf ? QStringLiteral(".pdf") : QStringLiteral(".png");
}

static QString refusal(ContentType type) {
    return type == ContentType::pdf ? QStringLiteral("Nur PDF-Dateien werden unterstützt.")
                                    : QStringLiteral("Nur PNG-Dateien werden unterstützt.");
}

FileDialog::FileDialog(const QString& title, ContentType type, const QUrl& folder)
    : QFileDialog(QApplication::activeWindow(), title), m_type(type) {
    setNameFilter(nameFilter(type));
    setDirectoryUrl(folder);
}

/// The desktop's dialog is gone before it can be told what it chose; where that will not do, it is shown
/// again.
std::optional<QUrl> FileDialog::run() {
    while (exec() == QDialog::Accepted) {
        const QUrl url = selectedUrls().value(0);
        if (url.isEmpty() || isOfType(url.fileName()))
            return url.isEmpty() ? std::nullopt : std::optional(url);
        if (acceptMode() == QFileDialog::AcceptOpen)
            continue;
        const QString path = url.toLocalFile() + ending(m_type);
        if (!QFileInfo::exists(path))
            return QUrl::fromLocalFile(path);
        selectFile(path);  // The user has not been asked whether this one may be replaced.
    }
    return std::nullopt;
}

void FileDialog::accept() {
    auto* field = findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
    const QFileInfo chosen(selectedFiles().value(0));
    const bool isForDesktop = field == nullptr;
    if (isForDesktop || chosen.isDir() || isOfType(chosen.fileName()))
        return QFileDialog::accept();
    if (acceptMode() == QFileDialog::AcceptOpen && chosen.exists())
        return refuse(*field);
    if (acceptMode() == QFileDialog::AcceptSave)
        field->setText(directory().relativeFilePath(chosen.filePath()) + ending(m_type));
    QFileDialog::accept();
}

void FileDialog::done(int answer) {
    closeCompletions();
    QFileDialog::done(answer);
}

bool FileDialog::isOfType(const QString& fileName) const {
    return fileName.endsWith(ending(m_type), Qt::CaseInsensitive);
}

void FileDialog::refuse(QLineEdit& field) {
    closeCompletions();
    field.setFocus();
    field.selectAll();
    QToolTip::showText(field.mapToGlobal(QPoint(0, field.height() / 2)), refusal(m_type), &field);
}

/// The list of completions is a window of its own, and a popup. Return accepts the dialog and leaves that
/// list open. As long as a popup is open, the toolkit sends all keys and clicks there and overlooks that
/// another window becomes active; so it must be closed before the dialog is.
void FileDialog::closeCompletions() {
    for (const auto* field : findChildren<QLineEdit*>()) {
        if (field->completer())
            field->completer()->popup()->hide();
    }
}

}  // namespace vellmora
