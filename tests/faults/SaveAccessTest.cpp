#include "base/Error.h"
#include "base/Files.h"
#include "tests/faults/FaultShim.h"
#include "tests/support/GTestQt.h"
#include "tests/support/TestPdf.h"

#include <cerrno>
#include <fcntl.h>
#include <functional>
#include <grp.h>
#include <map>
#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>
#include <vector>

#include <QDir>
#include <QTemporaryDir>
#include <QtEndian>

using namespace vellmora;
using namespace vellmora::test;

namespace {

struct Person {
    uid_t user;
    std::vector<gid_t> groups;  ///< the first is the one that new files get
};

constexpr gid_t team = 3100;
constexpr gid_t board = 3200;
const Person root{0, {0}};
const Person alice{2001, {3001, team}};
const Person bob{2002, {3002, team}};
const Person carol{2003, {3003, team}};
const std::vector<Person> everybody{
    alice,
    bob,
    carol,
    {2004, {3004}},         // in no group of anybody's
    {2005, {3005, board}},  //
    {2006, {3001}},         // shares a primary group with Alice
    {2007, {3001, board}},
    {2008, {3002}},  // and with Bob
};

/// A line of an access list: tag (see acl(5)), permissions and whom it names.
struct Line {
    quint16 tag;
    quint16 permissions;
    quint32 id = 0xffffffff;
};
constexpr quint16 owner = 1, user = 2, owningGroup = 4, group = 8, mask = 16, other = 32;

QByteArray accessList(const std::vector<Line>& lines) {
    QByteArray bytes(qsizetype(4 + 8 * lines.size()), '\0');
    qToLittleEndian<quint32>(2, bytes.data());
    char* at = bytes.data() + 4;
    for (const Line& line : lines) {
        qToLittleEndian(line.tag, at);
        qToLittleEndian(line.permissions, at + 2);
        qToLittleEndian(line.id, at + 4);
        at += 8;
    }
    return bytes;
}

/// What a child process answers that does this as that person.
int as(const Person& person, const std::function<int()>& act) {
    const pid_t child = ::fork();
    if (child == 0) {
        const bool isPerson = ::setgroups(person.groups.size(), person.groups.data()) == 0 &&
                              ::setresgid(person.groups[0], person.groups[0], person.groups[0]) == 0 &&
                              ::setresuid(person.user, person.user, person.user) == 0;
        ::_exit(isPerson ? act() : 99);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

/// What each of them may do with a file (R_OK, W_OK).
using Access = std::map<uid_t, int>;

Access accessTo(const QString& path) {
    const QByteArray name = QFile::encodeName(path);
    Access access;
    for (const Person& person : everybody) {
        const bool isPerson = ::setgroups(person.groups.size(), person.groups.data()) == 0 &&
                              ::setegid(person.groups[0]) == 0 && ::seteuid(person.user) == 0;
        EXPECT_TRUE(isPerson);
        const auto may = [&](int right) {
            return ::faccessat(AT_FDCWD, name, right, AT_EACCESS) == 0 ? right : 0;
        };
        access[person.user] = may(R_OK) | may(W_OK);
        EXPECT_TRUE(::seteuid(0) == 0 && ::setegid(0) == 0);
    }
    EXPECT_EQ(::setgroups(root.groups.size(), root.groups.data()), 0);
    return access;
}

struct Case {
    const char* name;
    Person saver;
    uid_t owner;
    gid_t group;
    mode_t mode;
    QByteArray list{};        ///< the file's access list, if it has one
    QByteArray folderList{};  ///< what new files in its folder get
    bool isKept = true;       ///< all may do what they could
};

const std::vector<Case> cases{
    {"a group that is not the owner's first", alice, 2001, team, 0640},
    {"a group that its owner is not in", alice, 2001, board, 0640, {}, {}, false},
    {"kept from a group that its owner is not in", alice, 2001, board, 0604, {}, {}, false},
    {"readable for all, of such a group", alice, 2001, board, 0664, {}, {}, false},
    {"more than the umask gives", alice, 2001, team, 0666},
    {"not even its owner reads it", alice, 2001, team, 0200},
    {"another's, in a common group", bob, 2001, team, 0660, {}, {}, false},
    {"another's, who may only read it", bob, 2001, team, 0464, {}, {}, false},
    {"another's, in a group of his own", bob, 2001, 3001, 0606, {}, {}, false},
    {"another's, saved by root", root, 2001, team, 0640},
    {"a list that lets a group in", alice, 2001, team, 0660,
     accessList({{owner, 6}, {owningGroup, 4}, {group, 6, board}, {mask, 6}, {other, 0}})},
    {"a list that keeps a group out", alice, 2001, 3001, 0644,
     accessList({{owner, 6}, {owningGroup, 4}, {group, 0, team}, {mask, 4}, {other, 4}})},
    {"a list that keeps a group out, of another's",
     bob,
     2001,
     3001,
     0666,
     accessList({{owner, 4}, {user, 6, 2002}, {owningGroup, 6}, {group, 0, board}, {mask, 6}, {other, 6}}),
     {},
     false},
    {"a list, saved by root", root, 2001, team, 0640,
     accessList({{owner, 6}, {user, 4, 2005}, {owningGroup, 0}, {mask, 4}, {other, 0}})},
    {"in a folder that lets more people in",
     alice,
     2001,
     team,
     0640,
     {},
     accessList({{owner, 6}, {user, 6, 2005}, {owningGroup, 6}, {mask, 6}, {other, 6}})},
};

/// Saves over files whose readers are few, as several people.
class SaveAccessTest : public testing::Test {
protected:
    void SetUp() override {
        if (::geteuid() != 0)
            GTEST_SKIP() << "only root can be several people";
        ::chmod(qPrintable(m_folder.path()), 0777);
        writeFile(path(), {});
        if (!set(path(), "system.posix_acl_access", accessList({{owner, 6}, {owningGroup, 4}, {other, 0}})))
            GTEST_SKIP() << "the file system keeps no access lists";
    }

    QString path() const { return m_folder.filePath(QStringLiteral("Vertrag.pdf")); }

    /// A folder with the file as the case has it.
    bool prepare(const Case& c) {
        QDir folder(m_folder.path());
        for (const QString& name : folder.entryList(QDir::Files | QDir::Hidden))
            folder.remove(name);
        ::removexattr(qPrintable(m_folder.path()), "system.posix_acl_default");
        writeFile(path(), "old");
        EXPECT_EQ(::chown(qPrintable(path()), c.owner, c.group), 0);
        EXPECT_EQ(::chmod(qPrintable(path()), c.mode), 0);
        return set(path(), "system.posix_acl_access", c.list) &&
               set(m_folder.path(), "system.posix_acl_default", c.folderList);
    }
    static bool set(const QString& path, const char* attribute, const QByteArray& value) {
        return value.isEmpty() ||
               ::setxattr(qPrintable(path), attribute, value.constData(), size_t(value.size()), 0) == 0;
    }
    int saveAs(const Person& person, const faults::Plan& plan = {}) {
        return as(person, [&] {
            if (plan.nth > 0)
                faults::arm(plan);
            try {
                files::writeAtomically(path(), "new");
            } catch (const Error&) {
                return 1;
            }
            return faults::disarm() >= plan.nth ? 0 : 2;
        });
    }

    /// Nobody may do with any file here what he could not do before, but the owners: they can give themselves
    /// any right.
    void expectNoMore(const Access& before, const Case& c) {
        const QDir folder(m_folder.path());
        for (const QString& name : folder.entryList(QDir::Files | QDir::Hidden)) {
            const QString file = folder.filePath(name);
            for (const auto& [person, rights] : accessTo(file)) {
                if (person != c.owner && person != QFileInfo(file).ownerId()) {
                    EXPECT_EQ(rights & ~before.at(person), 0) << person << " " << name.toStdString();
                }
            }
        }
    }

    QTemporaryDir m_folder;
};

}  // namespace

TEST_F(SaveAccessTest, NobodyMayDoMoreAfterASaveAndWhoCanKeepHisRightsKeepsThem) {
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        ASSERT_TRUE(prepare(c));
        const Access before = accessTo(path());
        ASSERT_EQ(saveAs(c.saver), 0);
        EXPECT_EQ(readFile(path()), "new");
        expectNoMore(before, c);
        if (c.isKept) {
            EXPECT_EQ(accessTo(path()), before);
        }
        EXPECT_EQ(saveAs(c.saver), 0) << "not a second time";
    }
}

/// Each step of a save in turn fails, or is the last one before the program is killed.
TEST_F(SaveAccessTest, ThereIsNoMomentInWhichSomebodyMayDoMore) {
    int tried = 0;
    for (const int error : {EPERM, EIO, faults::Plan::killed}) {
        for (const Case& c : cases) {
            int answer = 0;
            for (int nth = 1; answer != 2 && !HasFailure(); ++nth) {
                SCOPED_TRACE(std::string(c.name) + ", call " + std::to_string(nth));
                ++tried;
                ASSERT_TRUE(prepare(c));
                const Access before = accessTo(path());
                answer =
                    saveAs(c.saver, {m_folder.path().toStdString(),
                                     faults::attributeCall | faults::renameCall, nth, error, false, true});
                expectNoMore(before, c);
            }
        }
    }
    std::printf("%d saves\n", tried);
}

TEST_F(SaveAccessTest, ANewFileGetsWhatItsFolderGives) {
    for (const std::vector<Line>& lines :
         {std::vector<Line>{{owner, 7}, {user, 6, 2005}, {owningGroup, 5}, {mask, 7}, {other, 0}},
          std::vector<Line>{{owner, 7}, {owningGroup, 6}, {other, 4}}}) {
        ASSERT_TRUE(prepare({"", alice, 2001, team, 0640, {}, accessList(lines)}));
        QFile::remove(path());
        ASSERT_EQ(saveAs(alice), 0);
        const Access access = accessTo(path());
        QFile::remove(path());
        as(alice, [&] { return ::creat(qPrintable(path()), 0666) >= 0 ? 0 : 1; });
        EXPECT_EQ(access, accessTo(path()));
    }
}
