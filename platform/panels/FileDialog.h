#pragma once

#include "platform/panels/FilePanels.h"

#include <optional>

#include <QFileDialog>

class QLineEdit;

namespace vellmora {

/// The desktop's file dialog where there is one, else the toolkit's: for one local file of one type.
///
/// A file is of the type that its name ends with, in upper or lower case. One of another type is not chosen:
/// to open, the dialog stays until there is another answer; to save, the name gets the ending of the type.
// Without Q_OBJECT: the toolkit shows the desktop's dialog in place of its own class only.
class FileDialog : public QFileDialog {
public:
    /// Modal to the window that is active now.
    FileDialog(const QString& title, ContentType type, const QUrl& folder);

    /// The user's choice; nothing when cancelled. Afterwards nothing of the dialog is left on the screen.
    std::optional<QUrl> run();

protected:
    void accept() override;
    void done(int answer) override;

private:
    bool isOfType(const QString& fileName) const;
    void refuse(QLineEdit& field);
    void closeCompletions();

    ContentType m_type;
};

}  // namespace vellmora
