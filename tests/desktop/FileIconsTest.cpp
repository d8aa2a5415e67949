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

TEST(FileIconsTest, FilesOfOneTypeShareAnIcon) {
    const QTemporaryDir folder;
    const FileIcons icons;
    writeFile(folder.filePath(QStringLiteral("a.pdf")), "%PDF-1.7");
    writeFile(folder.filePath(QStringLiteral("b.pdf")), "%PDF-1.7");
    const QIcon one = icons.icon(QFileInfo(folder.filePath(QStringLiteral("a.pdf"))));
    const QIcon other = icons.icon(QFileInfo(folder.filePath(QStringLiteral("b.pdf"))));
    EXPECT_EQ(one.cacheKey(), other.cacheKey());
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
