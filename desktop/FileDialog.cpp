#include "desktop/FileDialog.h"

#include <malloc.h>

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QApplication>
#include <QBackingStore>
#include <QCompleter>
#include <QDir>
#include <QFileInfo>
#include <QFileSystemModel>
#include <QLineEdit>
#include <QPixmapCache>
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

FileDialog::FileDialog() {
    setIconProvider(&m_icons);
}

std::optional<QUrl> FileDialog::run(const OpenPanel& panel, const QUrl& folder) {
    setAcceptMode(QFileDialog::AcceptOpen);
    setFileMode(QFileDialog::ExistingFile);
    prepare(panel.title, panel.contentType, folder);
    return run();
}

std::optional<QUrl> FileDialog::run(const SavePanel& panel, const QUrl& folder) {
    setAcceptMode(QFileDialog::AcceptSave);
    setFileMode(QFileDialog::AnyFile);
    prepare(panel.title, panel.contentType, folder);
    selectFile(panel.nameFieldStringValue);
    return run();
}

std::optional<QUrl> FileDialog::run() {
    auto url = choose();
    // Whoever has chosen a file does not wait for this.
    QMetaObject::invokeMethod(this, &FileDialog::rest, Qt::QueuedConnection);
    return url;
}

/// Nothing of an earlier run is left: neither its name nor what was selected in a list.
void FileDialog::prepare(const QString& title, ContentType type, const QUrl& folder) {
    if (QWidget* window = QApplication::activeWindow(); window && window != parentWidget())
        setParent(window, windowFlags());
    setWindowTitle(title);
    m_type = type;
    for (auto* button : findChildren<QAbstractButton*>())
        button->setIcon(FileIcons::inSmallSizes(button->icon()));
    setNameFilter(nameFilter(type));
    setDirectoryUrl(folder);
    clearSelection();
    if (QLineEdit* field = nameField())
        field->clear();
    watchTyping();
    m_isTyped = false;
}

void FileDialog::clearSelection() {
    for (auto* list : findChildren<QAbstractItemView*>())
        list->clearSelection();
}

void FileDialog::watchTyping() {
    if (m_watched || !nameField())
        return;
    m_watched = nameField();
    connect(m_watched, &QLineEdit::textEdited, this, [this] { m_isTyped = true; });
    for (const auto* list : findChildren<QAbstractItemView*>()) {
        connect(list->selectionModel(), &QItemSelectionModel::selectionChanged, this, [this, list] {
            if (list->hasFocus())
                m_isTyped = false;
        });
    }
}

/// The desktop's dialog is gone before it can be told what it chose; where that will not do, it is shown
/// again.
std::optional<QUrl> FileDialog::choose() {
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
    closeCompletions();
    // Qt selects in the list what is typed, folders on the way as well. One that is still being listed may
    // stay selected, and would be entered in place of the file.
    if (m_isTyped)
        clearSelection();
    const QFileInfo chosen(selectedFiles().value(0));
    if (isDesktops() || chosen.isDir() || isOfType(chosen.fileName()))
        return QFileDialog::accept();
    if (acceptMode() == QFileDialog::AcceptOpen && chosen.exists())
        return refuse();
    if (acceptMode() == QFileDialog::AcceptSave)
        nameField()->setText(directory().relativeFilePath(chosen.filePath()) + ending(m_type));
    QFileDialog::accept();
}

void FileDialog::done(int answer) {
    closeCompletions();
    QFileDialog::done(answer);
}

bool FileDialog::isOfType(const QString& fileName) const {
    return fileName.endsWith(ending(m_type), Qt::CaseInsensitive);
}

void FileDialog::refuse() {
    QLineEdit* field = nameField();
    field->setFocus();
    field->selectAll();
    QToolTip::showText(field->mapToGlobal(QPoint(0, field->height() / 2)), refusal(m_type), field);
}

/// The list of completions is a window of its own, and a popup. Return accepts the dialog and leaves that
/// list open. As long as a popup is open, Qt sends all keys and clicks there and overlooks that
/// another window becomes active; so it must be closed before the dialog is.
void FileDialog::closeCompletions() {
    for (const auto* field : findChildren<QLineEdit*>()) {
        if (field->completer())
            field->completer()->popup()->hide();
    }
}

/// Qt lists a folder anew at each change in it, also where nobody sees the dialog, and keeps what was
/// painted. That was in many small pieces, which the allocator would keep.
void FileDialog::rest() {
    if (isVisible())
        return;  // it has been opened again
    if (QBackingStore* painted = backingStore())
        painted->resize({1, 1});
    if (auto* folder = findChild<QFileSystemModel*>())
        folder->setRootPath({});
    QPixmapCache::clear();
    ::malloc_trim(0);
}

bool FileDialog::isDesktops() const {
    return nameField() == nullptr;
}

/// None in the desktop's dialog.
QLineEdit* FileDialog::nameField() const {
    return findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
}

}  // namespace vellmora
