#pragma once

#include "base/FilePanels.h"
#include "desktop/FileIcons.h"

#include <optional>

#include <QFileDialog>
#include <QPointer>

class QLineEdit;

namespace vellmora {

/// The desktop's file dialog where there is one, else Qt's: for one local file of one type.
///
/// A file is of the type that its name ends with, in upper or lower case. One of another type is not chosen:
/// to open, the dialog stays until there is another answer; to save, the name gets the ending of the type.
///
/// Qt's dialog can be run again and again. To make one takes 10 ms, to destroy one 20 to 40 ms,
/// which is longer than it takes to open a document.
// Without Q_OBJECT: Qt shows the desktop's dialog in place of its own class only.
class FileDialog : public QFileDialog {
public:
    FileDialog();

    /// Runs modal to the window that is active, and starts in `folder`. The user's choice; nothing when
    /// cancelled. Afterwards nothing of the dialog is left on the screen.
    std::optional<QUrl> run(const OpenPanel& panel, const QUrl& folder);
    std::optional<QUrl> run(const SavePanel& panel, const QUrl& folder);

    /// Whether the last run showed the desktop's dialog. That one may remember what was chosen in it.
    bool isDesktops() const;

protected:
    void accept() override;
    void done(int answer) override;

private:
    void watchTyping();
    void clearSelection();
    void prepare(const QString& title, ContentType type, const QUrl& folder);
    std::optional<QUrl> run();
    std::optional<QUrl> choose();
    bool isOfType(const QString& fileName) const;
    void refuse();
    void closeCompletions();
    void rest();
    QLineEdit* nameField() const;

    FileIcons m_icons;
    ContentType m_type = ContentType::pdf;
    QPointer<QLineEdit> m_watched;  ///< the name field, once its typing is watched
    bool m_isTyped = false;         ///< what is to be chosen stands in the name field, and not in the list
};

}  // namespace vellmora
