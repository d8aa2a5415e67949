#include "app/Handbook.h"

#include "app/ContentWindow.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QShortcut>
#include <QUrl>

namespace vellmora::handbook {

QString installedFile() {
    const QString folder = QCoreApplication::applicationDirPath();
    const QString inBuildTree = folder + QStringLiteral("/share/vellmora/handbuch.html");
    return QFileInfo::exists(inBuildTree)
               ? inBuildTree
               : QDir::cleanPath(folder + QStringLiteral("/" VELLMORA_DATA_DIR "/handbuch.html"));
}

QString show(const QString& file) {
    if (!QFileInfo::exists(file))
        return QStringLiteral("Das Handbuch fehlt: ") + file;
    if (!QDesktopServices::openUrl(QUrl::fromLocalFile(file)))
        return QStringLiteral("Das Handbuch konnte nicht geöffnet werden: ") + file;
    return {};
}

void showOnHelpKey(ContentWindow& window, const QString& file) {
    auto* key = new QShortcut(QKeySequence(QKeySequence::HelpContents), &window.window());
    key->setAutoRepeat(false);
    QObject::connect(key, &QShortcut::activated, &window, [&window, file] {
        if (const QString failure = show(file); !failure.isEmpty())
            window.content().report(failure, ContentView::Outcome::problem);
    });
}

}  // namespace vellmora::handbook
