#include "platform/error/Error.h"
#include "platform/files/AtomicFile.h"
#include "platform/files/Files.h"
#include "platform/files/ReplacementDirectory.h"
#include "tests/support/GTestQt.h"
#include "tests/support/TestPdf.h"

#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

#include <QDir>
#include <QTemporaryDir>

using namespace vellmora;
using namespace vellmora::test;

namespace {

class FilesTest : public testing::Test {
protected:
    QString path(const char* name) const { return m_folder.filePath(QString::fromUtf8(name)); }
    QStringList entries() const {
        return QDir(m_folder.path())
            .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    }
    static unsigned permissions(const QString& path) {
        struct stat info {};
        ::stat(qPrintable(path), &info);
        return info.st_mode & 0777;
    }
    template <typename Call>
    static QString failureOf(Call call) {
        try {
            call();
        } catch (const Error& error) {
            return error.localizedDescription();
        }
        return QStringLiteral("no failure");
    }

    QTemporaryDir m_folder;
};

}  // namespace

TEST_F(FilesTest, WritesAndReplacesWholeFilesAndLeavesNothingElse) {
    files::writeAtomically(path("a.txt"), "one");
    files::writeAtomically(path("a.txt"), "two");
    EXPECT_EQ(files::read(path("a.txt")), "two");
    EXPECT_EQ(entries(), QStringList{QStringLiteral("a.txt")});
}

TEST_F(FilesTest, AFileThatIsNotCommittedLeavesTheTargetAndNoLitter) {
    writeFile(path("a.txt"), "old");
    {
        AtomicFile file(path("a.txt"));
        file.write("half", 4);
    }
    EXPECT_EQ(readFile(path("a.txt")), "old");
    EXPECT_EQ(entries(), QStringList{QStringLiteral("a.txt")});
}

TEST_F(FilesTest, ClearsWhatACrashLeftButNotWhatIsInUse) {
    writeFile(path(".vellmora-abc123"), "left by a crash");
    AtomicFile inUse(path("other.txt"));
    inUse.write("x", 1);
    files::writeAtomically(path("a.txt"), "new");
    inUse.commit();
    EXPECT_EQ(entries(), (QStringList{QStringLiteral("a.txt"), QStringLiteral("other.txt")}));
}

TEST_F(FilesTest, ClearingNeverLeavesTheTemporaryFolder) {
    QDir(m_folder.path()).mkdir(QStringLiteral("Akten"));
    writeFile(path("Akten/Vertrag.pdf"), "precious");
    ASSERT_EQ(::symlink("Akten", qPrintable(path(".vellmora-link00"))), 0);
    QDir(m_folder.path()).mkdir(QStringLiteral(".vellmora-folder"));
    ASSERT_EQ(::symlink("../Akten", qPrintable(path(".vellmora-folder/inner"))), 0);
    writeFile(path(".vellmora-folder/Vertrag.pdf"), "half");
    files::writeAtomically(path("a.txt"), "new");
    EXPECT_FALSE(QFile::exists(path(".vellmora-folder")));
    EXPECT_EQ(readFile(path("Akten/Vertrag.pdf")), "precious");
}

TEST_F(FilesTest, TwoProgramsWriteTheSameFileWithoutHarm) {
    constexpr int writers = 4;
    std::vector<pid_t> children;
    for (int i = 0; i < writers; ++i) {
        children.push_back(::fork());
        if (children.back() != 0)
            continue;
        const QByteArray content(300000, char('a' + i));
        int failures = 0;
        for (int round = 0; round < 30; ++round)
            failures += failureOf([&] { files::writeAtomically(path("a.txt"), content); }) !=
                        QStringLiteral("no failure");
        ::_exit(failures);
    }
    for (const pid_t child : children) {
        int status = 0;
        ::waitpid(child, &status, 0);
        EXPECT_EQ(status, 0) << "a write was disturbed by another program's";
    }
    const QByteArray last = readFile(path("a.txt"));
    EXPECT_EQ(last, QByteArray(300000, last.at(0)));
    EXPECT_EQ(entries(), QStringList{QStringLiteral("a.txt")});
}

TEST_F(FilesTest, NobodyElseCanReadAFileBeforeItIsWhole) {
    const mode_t mask = ::umask(0);
    AtomicFile file(path("a.txt"));
    const ReplacementDirectory directory(path("b.txt"));
    ::umask(mask);
    for (const QString& name : entries())
        EXPECT_EQ(permissions(m_folder.filePath(name)) & 077, 0U) << name.toStdString();
    EXPECT_EQ(entries().size(), 2);
}

TEST_F(FilesTest, FollowsSymbolicLinksAlsoToMissingFiles) {
    QDir(m_folder.path()).mkdir(QStringLiteral("real"));
    ASSERT_EQ(::symlink("real/file.txt", qPrintable(path("link.txt"))), 0);
    for (const char* content : {"first", "second"}) {
        files::writeAtomically(path("link.txt"), content);
        EXPECT_EQ(readFile(path("real/file.txt")), content);
        EXPECT_TRUE(QFileInfo(path("link.txt")).isSymbolicLink());
    }
}

TEST_F(FilesTest, FollowsALinkUpwardsFromWhereItsFolderReallyLies) {
    QDir(m_folder.path()).mkpath(QStringLiteral("real/inner"));
    ASSERT_EQ(::symlink("real/inner", qPrintable(path("folder"))), 0);
    ASSERT_EQ(::symlink("../file.txt", qPrintable(path("folder/link.txt"))), 0);
    writeFile(path("file.txt"), "precious");
    for (const char* name : {"folder/link.txt", "folder/../file.txt"}) {
        files::writeAtomically(path(name), name);
        EXPECT_EQ(readFile(path("real/file.txt")), name);
    }
    EXPECT_EQ(readFile(path("file.txt")), "precious");
}

TEST_F(FilesTest, NewFilesHaveTheUmasksPermissionsAndNeverMoreThanTheFileBefore) {
    const mode_t mask = ::umask(027);
    files::writeAtomically(path("new.txt"), "x");
    writeFile(path("private.txt"), "x");
    ::chmod(qPrintable(path("private.txt")), 0600);
    files::writeAtomically(path("private.txt"), "y");
    ::umask(mask);
    EXPECT_EQ(permissions(path("new.txt")), 0640U);
    EXPECT_EQ(permissions(path("private.txt")), 0600U);
}

TEST_F(FilesTest, ThreadsThatWriteAtOnceLeaveTheUmaskAsItIs) {
    const mode_t mask = ::umask(022);
    std::vector<std::jthread> writers(2);
    for (std::jthread& writer : writers) {
        writer = std::jthread([name = path("a.txt")] {
            for (int call = 0; call < 40000; ++call)
                files::permissionsForNewFile(name);
        });
    }
    writers.clear();
    EXPECT_EQ(::umask(mask), 022U);
}

TEST_F(FilesTest, ReportsFailuresInGermanWithTheFilesName) {
    EXPECT_EQ(failureOf([&] { files::read(path("fehlt %1.pdf")); }),
              QStringLiteral("„fehlt %1.pdf“ konnte nicht gelesen werden. "
                             "Die Datei oder der Ordner ist nicht vorhanden."));
    EXPECT_EQ(failureOf([&] { files::writeAtomically(path("kein/Ordner.txt"), "x"); }),
              QStringLiteral("„Ordner.txt“ konnte nicht angelegt werden. "
                             "Die Datei oder der Ordner ist nicht vorhanden."));
    EXPECT_EQ(failureOf([&] { files::writeAtomically(m_folder.path(), "x"); }).section(QLatin1Char('.'), 1),
              QStringLiteral(" Es handelt sich um einen Ordner."));
    writeFile(path("datei"), "x");
    EXPECT_EQ(failureOf([&] { files::createDirectory(path("datei/unter")); }),
              QStringLiteral(
                  "Der Ordner „unter“ konnte nicht angelegt werden. Ein Teil des Pfades ist kein Ordner."));
}

TEST_F(FilesTest, RefusesPipesAndFoldersWithoutBlocking) {
    ASSERT_EQ(::mkfifo(qPrintable(path("pipe.pdf")), 0600), 0);
    EXPECT_THROW(files::read(path("pipe.pdf")), Error);
    EXPECT_THROW(files::copy(path("pipe.pdf"), path("copy.pdf")), Error);
    EXPECT_THROW(files::read(m_folder.path()), Error);
    EXPECT_THROW(files::writeAtomically(path("pipe.pdf"), "x"), Error);
    EXPECT_THROW(ReplacementDirectory{path("pipe.pdf")}, Error);
    EXPECT_EQ(entries(), QStringList{QStringLiteral("pipe.pdf")});
    struct stat info {};
    EXPECT_TRUE(::stat(qPrintable(path("pipe.pdf")), &info) == 0 && S_ISFIFO(info.st_mode));
}

TEST_F(FilesTest, AReplacementTakesTheOriginalsPlaceInOneStepAndTheLinkStays) {
    writeFile(path("real.pdf"), "old");
    ASSERT_EQ(::symlink("real.pdf", qPrintable(path("link.pdf"))), 0);
    {
        ReplacementDirectory directory(path("link.pdf"));
        EXPECT_EQ(QFileInfo(directory.path()).path(), m_folder.path());
        EXPECT_EQ(permissions(directory.path()), 0700U);
        files::writeAtomically(directory.path() + QStringLiteral("/link.pdf"), "new");
        EXPECT_EQ(readFile(path("real.pdf")), "old");
        directory.replaceOriginal(directory.path() + QStringLiteral("/link.pdf"));
    }
    EXPECT_EQ(readFile(path("real.pdf")), "new");
    EXPECT_TRUE(QFileInfo(path("link.pdf")).isSymbolicLink());
    EXPECT_EQ(entries(), (QStringList{QStringLiteral("link.pdf"), QStringLiteral("real.pdf")}));
}
