#pragma once

#include <QFileIconProvider>

namespace vellmora {

/// Icons and names of types for a list of files, told by the files' names. Qt's own looks at each file, on
/// the thread of the window, which stands still meanwhile: for seconds where a folder lies on a slow share.
class FileIcons : public QFileIconProvider {
public:
    using QFileIconProvider::icon;
    QIcon icon(const QFileInfo& file) const override;
    QString type(const QFileInfo& file) const override;
};

}  // namespace vellmora
