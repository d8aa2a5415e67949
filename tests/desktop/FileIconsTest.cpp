#include "desktop/FileDialog.h"
#include "tests/support/GTestQt.h"
#include "tests/support/TestPdf.h"

#include <QAbstractFileIconProvider>
#include <QDir>
#include <QFile>
#include <QMimeDatabase>
#include <QTemporaryDir>

using namespace vellmora;
using namespace vellmora::test;

/// A folder may hold thousands of files.
TEST(FileIconsTest, FilesShareASmallIconWhereTheDesktopHasNone) {
    QIcon::setThemeName(QStringLiteral("none"));
    const QTemporaryDir folder;
    const FileIcons icons;
    QList<QIcon> shown;
    for (const char* name : {"a.pdf", "b.pdf"}) {
        const QString path = folder.filePath(QString::fromUtf8(name));
        writeFile(path, "%PDF-1.7");
        shown.append(icons.icon(QFileInfo(path)));
    }
    EXPECT_EQ(shown[0].cacheKey(), shown[1].cacheKey());
    ASSERT_FALSE(shown[0].availableSizes().isEmpty());
    for (const QSize& size : shown[0].availableSizes())
        EXPECT_LE(size.width(), 48);
}

/// The window waits for each look at a file that a slow share has.
TEST(FileIconsTest, TheDialogTellsAFilesTypeWithoutLookingAtIt) {
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("Vertrag.pdf"));
    writeFile(path, "%PDF-1.7");
    const QFileInfo known(path);
    ASSERT_TRUE(known.isFile());
    ASSERT_TRUE(QFile::remove(path) && QDir().mkdir(path));

    const FileDialog dialog;
    const QMimeType pdf = QMimeDatabase().mimeTypeForName(QStringLiteral("application/pdf"));
    EXPECT_EQ(dialog.iconProvider()->type(known), pdf.comment());
    EXPECT_EQ(dialog.iconProvider()->type(QFileInfo(path)), QFileIconProvider().type(QFileInfo(path)))
        << "a folder";
    EXPECT_FALSE(dialog.iconProvider()->icon(known).isNull());
    const QString unknown = folder.filePath(QStringLiteral("Notiz.unbekannt"));
    writeFile(unknown, "");
    EXPECT_EQ(dialog.iconProvider()->type(QFileInfo(unknown)), QStringLiteral("unbekannt"));
}
