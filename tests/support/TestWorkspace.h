#pragma once

#include "base/FilePanels.h"
#include "library/StampLibrary.h"

#include <memory>

#include <QList>
#include <QTemporaryDir>

namespace vellmora::test {

/// Answers file panels in the user's place, and keeps what was asked.
class ScriptedPanels : public FilePanels {
public:
    std::optional<QUrl> runModal(const OpenPanel& panel) override;
    std::optional<QUrl> runModal(const SavePanel& panel) override;

    std::optional<QUrl> answer;  ///< none: the user cancels
    QList<OpenPanel> opened;
    QList<SavePanel> saved;
};

/// A user's home in a temporary folder, with a clock that stands still until a test moves it.
class TestWorkspace {
public:
    TestWorkspace();

    QString path(const QString& name) const { return m_folder.filePath(name); }
    QUrl url(const QString& name) const { return QUrl::fromLocalFile(path(name)); }
    QString storeFolder() const { return path(QStringLiteral("data/Vellmora")); }
    QString stampsFolder() const { return storeFolder() + QStringLiteral("/Stamps"); }
    QString metadataFile() const { return storeFolder() + QStringLiteral("/stamp-library.json"); }
    Folders folders() const;

    /// A library as a new start of the program makes it.
    std::unique_ptr<StampLibrary> makeLibrary();

    ScriptedPanels panels;
    QDateTime now;

private:
    QTemporaryDir m_folder;
};

/// The library's preset with this built-in key, or of this name.
StampPreset builtin(const StampLibrary& library, const QString& key);
StampPreset named(const StampLibrary& library, const QString& displayName);

}  // namespace vellmora::test
