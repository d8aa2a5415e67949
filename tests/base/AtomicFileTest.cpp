#include "base/AtomicFile.h"
#include "base/Error.h"
#include "base/FileAttributes.h"
#include "base/Files.h"
#include "tests/support/GTestQt.h"
#include "tests/support/TestPdf.h"

#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
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
        return info.st_mode & 07777;
    }
    /// What a program leaves that is killed while it writes; its name.
    QString leaveATemporaryFile() {
        const QStringList before = entries();
        const pid_t child = ::fork();
        if (child == 0) {
            AtomicFile file(path("half.txt"));
            file.write("half", 4);
            ::_exit(0);
        }
        ::waitpid(child, nullptr, 0);
        for (const QString& name : entries()) {
            if (!before.contains(name))
                return name;
        }
        ADD_FAILURE() << "nothing is left";
        return {};
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
    leaveATemporaryFile();
    AtomicFile inUse(path("other.txt"));
    inUse.write("x", 1);
    EXPECT_EQ(entries().size(), 1) << "the file of the crash is still there";
    leaveATemporaryFile();
    files::writeAtomically(path("a.txt"), "new");
    inUse.commit();
    EXPECT_EQ(entries(), (QStringList{QStringLiteral("a.txt"), QStringLiteral("other.txt")}));
}

TEST_F(FilesTest, ClearsNothingButItsOwn) {
    // Names of a user's own choice.
    for (const char* name : {".vellmora-backup", ".vellmora-folder"}) {
        QDir(m_folder.path()).mkdir(QString::fromUtf8(name));
        writeFile(path(name) + QStringLiteral("/Notizen.txt"), "precious");
    }
    writeFile(path(".vellmora-file01"), "precious");
    writeFile(path(".vellmora-0123456789abcdef.tmp"), "precious");
    // What has the name of one of ours, and is none.
    const QString name = leaveATemporaryFile();
    ASSERT_TRUE(QFile::remove(m_folder.filePath(name)));
    const auto likeIt = [&](char digit) {
        QString like = name;
        like[like.indexOf(QLatin1Char('-')) + 1] = QLatin1Char(digit);
        like[like.indexOf(QLatin1Char('-')) + 2] = QLatin1Char('0');
        return m_folder.filePath(like);
    };
    QDir().mkdir(likeIt('0'));
    writeFile(likeIt('0') + QStringLiteral("/Notizen.txt"), "precious");
    QDir().mkdir(likeIt('1'));
    ASSERT_EQ(::symlink(".vellmora-backup", qPrintable(likeIt('2'))), 0);
    ASSERT_EQ(::symlink(".vellmora-file01", qPrintable(likeIt('3'))), 0);
    ASSERT_EQ(::link(qPrintable(path(".vellmora-file01")), qPrintable(likeIt('4'))), 0);
    ASSERT_EQ(::mkfifo(qPrintable(likeIt('5')), 0600), 0);
    writeFile(likeIt('6'), "another user's");
    const bool isAnothers = ::chown(qPrintable(likeIt('6')), 65534, 65534) == 0;
    if (!isAnothers)
        QFile::remove(likeIt('6'));
    writeFile(m_folder.filePath(name.toUpper()), "precious");

    const QStringList before = entries();
    ASSERT_EQ(before.size(), isAnothers ? 12 : 11);
    files::writeAtomically(path("a.txt"), "new");
    QFile::remove(path("a.txt"));
    EXPECT_EQ(entries(), before);
    for (const char* folder : {".vellmora-backup", ".vellmora-folder"})
        EXPECT_EQ(readFile(path(folder) + QStringLiteral("/Notizen.txt")), "precious") << folder;
    EXPECT_EQ(readFile(likeIt('0') + QStringLiteral("/Notizen.txt")), "precious");
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
    ::umask(mask);
    for (const QString& name : entries())
        EXPECT_EQ(permissions(m_folder.filePath(name)) & 077, 0U) << name.toStdString();
    EXPECT_EQ(entries().size(), 1);
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

TEST_F(FilesTest, LinksThatAnotherUserMadeInAFolderForAllAreNotFollowed) {
    if (::geteuid() != 0)
        GTEST_SKIP() << "only root can make links in others' names";
    constexpr uid_t another = 65534;
    QDir(m_folder.path()).mkpath(QStringLiteral("own/inner"));
    writeFile(path("own/inner/file.txt"), "precious");
    QDir(m_folder.path()).mkdir(QStringLiteral("shared"));
    ASSERT_EQ(::symlink("../own/inner/file.txt", qPrintable(path("shared/file.txt"))), 0);
    ASSERT_EQ(::symlink("../own/inner", qPrintable(path("shared/inner"))), 0);
    ASSERT_EQ(::symlink("shared/file.txt", qPrintable(path("link.txt"))), 0);
    struct Setting {
        mode_t folderMode;
        uid_t folderOwner;
        uid_t linkOwner;
        bool isFollowed;
    };
    for (const auto& [folderMode, folderOwner, linkOwner, isFollowed] :
         {Setting{01777, 0, another, false}, Setting{01777, 0, 0, true},
          Setting{01777, another, another, true}, Setting{01755, 0, another, true},
          Setting{0777, 0, another, true}}) {
        ASSERT_EQ(::chmod(qPrintable(path("shared")), folderMode), 0);
        ASSERT_EQ(::chown(qPrintable(path("shared")), folderOwner, 0), 0);
        for (const char* name : {"shared/file.txt", "shared/inner"})
            ASSERT_EQ(::lchown(qPrintable(path(name)), linkOwner, 0), 0);
        for (const char* name : {"shared/file.txt", "shared/inner/file.txt", "link.txt"}) {
            SCOPED_TRACE(name);
            writeFile(path("own/inner/file.txt"), "precious");
            const QString failure = failureOf([&] { files::writeAtomically(path(name), "new"); });
            EXPECT_EQ(readFile(path("own/inner/file.txt")), isFollowed ? "new" : "precious");
            if (!isFollowed) {
                EXPECT_TRUE(failure.endsWith(QStringLiteral(
                    "Der Weg dorthin führt über eine Verknüpfung, die ein anderer Benutzer angelegt hat.")))
                    << failure.toStdString();
            }
        }
    }
}

TEST_F(FilesTest, NewFilesHaveTheUmasksPermissionsAndReplacedOnesThoseTheyHad) {
    const mode_t mask = ::umask(027);
    files::writeAtomically(path("new.txt"), "x");
    EXPECT_EQ(permissions(path("new.txt")), 0640U);
    // A program's rights to act as its owner are not for another content.
    for (const auto& [before, after] :
         {std::pair<mode_t, mode_t>{0600, 0600}, {0664, 0664}, {0200, 0200}, {0755, 0755}, {07755, 0755}}) {
        ASSERT_EQ(::chmod(qPrintable(path("new.txt")), before), 0);
        files::writeAtomically(path("new.txt"), "y");
        EXPECT_EQ(permissions(path("new.txt")), after);
    }
    ::umask(mask);
}

TEST_F(FilesTest, AReplacedFileKeepsItsExtendedAttributes) {
    writeFile(path("a.txt"), "old");
    const QByteArray name = QFile::encodeName(path("a.txt"));
    const QByteArray longValue(2000, 'x');
    if (::setxattr(name, "user.xdg.origin.url", "http", 4, 0) != 0)
        GTEST_SKIP() << "the file system has none";
    ASSERT_EQ(::setxattr(name, "user.long", longValue.constData(), size_t(longValue.size()), 0), 0);
    // The right of a program to do something (here: nothing) is not for another content.
    const QByteArray capability = QByteArray::fromHex("0000000200000000000000000000000000000000");
    ::setxattr(name, "security.capability", capability.constData(), size_t(capability.size()), 0);
    files::writeAtomically(path("a.txt"), "new");
    QByteArray value(3000, Qt::Uninitialized);
    EXPECT_EQ(::getxattr(name, "user.xdg.origin.url", value.data(), size_t(value.size())), 4);
    EXPECT_EQ(::getxattr(name, "user.long", value.data(), size_t(value.size())), longValue.size());
    EXPECT_EQ(::getxattr(name, "security.capability", value.data(), size_t(value.size())), -1);
}

/// The system's signal for a file beyond the limit would end the program.
TEST_F(FilesTest, ALimitOfTheFileSizeIsAnError) {
    writeFile(path("a.txt"), "old");
    const pid_t child = ::fork();
    if (child == 0) {
        files::makeFileSizeLimitAnError();
        const struct rlimit limit { 1000, 1000 };
        ::setrlimit(RLIMIT_FSIZE, &limit);
        const QString failure =
            failureOf([&] { files::writeAtomically(path("a.txt"), QByteArray(5000, 'x')); });
        ::_exit(failure.endsWith(
                    QStringLiteral("Die Datei ist größer, als der Datenträger oder eine Vorgabe erlaubt."))
                    ? 0
                    : 1);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(status, 0) << "128 and more: ended by a signal";
    EXPECT_EQ(readFile(path("a.txt")), "old");
    EXPECT_EQ(entries(), QStringList{QStringLiteral("a.txt")});
}

TEST_F(FilesTest, ThreadsThatWriteAtOnceLeaveTheUmaskAsItIs) {
    const mode_t mask = ::umask(022);
    std::vector<std::jthread> writers(2);
    for (std::jthread& writer : writers) {
        writer = std::jthread([folder = m_folder.path()] {
            for (int call = 0; call < 40000; ++call)
                permissionsForNewFile(folder);
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
    EXPECT_EQ(entries(), QStringList{QStringLiteral("pipe.pdf")});
    struct stat info {};
    EXPECT_TRUE(::stat(qPrintable(path("pipe.pdf")), &info) == 0 && S_ISFIFO(info.st_mode));
}

TEST_F(FilesTest, AFileThatIsWrittenOnceMoreHasNothingOfTheFirstTime) {
    AtomicFile file(path("new.pdf"));
    file.write("the first time", 14);
    file.restart();
    file.write("now", 3);
    file.commit();
    EXPECT_EQ(readFile(path("new.pdf")), "now");
}

TEST_F(FilesTest, AFinishedFileTakesTheOthersPlaceInOneStepAndTheLinkStays) {
    writeFile(path("real.pdf"), "old");
    ASSERT_EQ(::symlink("real.pdf", qPrintable(path("link.pdf"))), 0);
    AtomicFile file(path("link.pdf"));
    file.write("new", 3);
    file.finish();
    EXPECT_EQ(readFile(path("real.pdf")), "old");
    file.commit();
    EXPECT_EQ(readFile(path("real.pdf")), "new");
    EXPECT_TRUE(QFileInfo(path("link.pdf")).isSymbolicLink());
    EXPECT_EQ(entries(), (QStringList{QStringLiteral("link.pdf"), QStringLiteral("real.pdf")}));
}
