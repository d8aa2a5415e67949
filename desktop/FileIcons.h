#pragma once

#include <QFileIconProvider>
#include <QIcon>

namespace vellmora {

/// Icons and names of types for a list of files, told by the files' names. Qt's own looks at each file, on
/// the thread of the window, which stands still meanwhile: for seconds where a folder lies on a slow share.
/// And where the desktop has no icons, Qt's own decodes those of the style for each file anew, and keeps
/// them: 70 KB a file.
class FileIcons : public QFileIconProvider {
public:
    FileIcons();
    QIcon icon(IconType type) const override;
    QIcon icon(const QFileInfo& file) const override;
    QString type(const QFileInfo& file) const override;

    /// The icon in the sizes that a dialog shows. A style's own come in sizes of up to 128 pixels, all of
    /// them decoded.
    static QIcon inSmallSizes(const QIcon& icon);

private:
    QIcon m_file;
    QIcon m_folder;
};

}  // namespace vellmora
