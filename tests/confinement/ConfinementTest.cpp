#include "confinement/Confinement.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <functional>
#include <gtest/gtest.h>
#include <linux/landlock.h>
#include <map>
#include <pthread.h>
#include <string>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

using namespace vellmora;

namespace {

using Attempt = std::function<bool()>;

/// A process that confines itself as one that may read a folder of fonts.
class ConfinementTest : public testing::Test {
protected:
    ConfinementTest() {
        m_folder.mkpath(QStringLiteral("fonts"));
        for (const std::string& file : {font, letter}) {
            QFile made(QString::fromStdString(file));
            EXPECT_TRUE(made.open(QIODevice::WriteOnly) && made.write("content") == 7);
        }
        policy.readableFolders = {font.substr(0, font.rfind('/'))};
    }

    /// Whether `attempt` succeeds in a process that has confined itself.
    bool succeeds(const Attempt& attempt) const {
        return succeedsInChild([&] { return confineProcess(policy) && attempt(); });
    }
    /// Each works in a process of its own, unless this system refuses it to all, and not in a confined one.
    void expectRefused(const std::map<std::string, Attempt>& attempts) const {
        size_t working = 0;
        for (const auto& [name, attempt] : attempts) {
            working += succeedsInChild(attempt) ? 1U : 0U;
            EXPECT_FALSE(succeeds(attempt)) << name;
        }
        EXPECT_GT(working * 2, attempts.size()) << "what never works cannot be seen to be refused";
    }

private:
    static bool succeedsInChild(const Attempt& attempt) {
        const pid_t child = ::fork();
        if (child == 0)
            ::_exit(attempt() ? 0 : 1);
        int status = 0;
        ::waitpid(child, &status, 0);
        return WIFEXITED(status) && WEXITSTATUS(status) == 0;
    }

    QTemporaryDir m_temporary;
    QDir m_folder{m_temporary.path()};

protected:
    const std::string font = m_folder.filePath(QStringLiteral("fonts/serif.ttf")).toStdString();
    const std::string letter = m_folder.filePath(QStringLiteral("letter.pdf")).toStdString();
    ConfinementPolicy policy;
};

bool canOpen(const std::string& path, int flags) {
    return ::open(path.c_str(), flags, 0600) >= 0;
}

bool canTakeMemory(size_t bytes, int protection = PROT_READ | PROT_WRITE) {
    void* memory = ::mmap(nullptr, bytes, protection, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    return memory != MAP_FAILED && ::munmap(memory, bytes) == 0;
}

/// Whether the system call was carried out, whatever came of it.
template <typename... Arguments>
bool canCall(long call, Arguments... arguments) {
    return ::syscall(call, arguments...) >= 0 || (errno != EPERM && errno != ENOSYS && errno != EACCES);
}

bool canStartThread() {
    pthread_t thread{};
    return ::pthread_create(
               &thread, nullptr, [](void* nothing) { return nothing; }, nullptr) == 0;
}

std::array<int, 2> pair() {
    std::array<int, 2> ends{};
    ::socketpair(AF_UNIX, SOCK_SEQPACKET, 0, ends.data());
    return ends;
}

}  // namespace

TEST_F(ConfinementTest, WhatComputingNeedsStaysPossible) {
    EXPECT_TRUE(succeeds([] { return canTakeMemory(size_t{500} << 20); }));
    const auto ends = pair();
    EXPECT_TRUE(succeeds([&] {
        char byte = 'a';
        return ::send(ends[0], &byte, 1, MSG_NOSIGNAL) == 1 && ::read(ends[1], &byte, 1) == 1;
    }));
    EXPECT_TRUE(succeeds([&] {
        std::FILE* file = std::fopen(font.c_str(), "rb");
        return file && std::fseek(file, 0, SEEK_END) == 0 && std::ftell(file) == 7;
    }));
}

TEST_F(ConfinementTest, MemoryIsLimitedAndNeverCode) {
    EXPECT_FALSE(succeeds([] { return canTakeMemory(4096, PROT_READ | PROT_EXEC); }));
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "the sanitizer takes terabytes of addresses for itself";
#endif
    constexpr size_t most = size_t{4} << 30;
    ASSERT_TRUE(canTakeMemory(most));
    EXPECT_FALSE(succeeds([] { return canTakeMemory(most); }));
    EXPECT_FALSE(succeeds([] { return limitMemory(size_t{400} << 20) && canTakeMemory(size_t{500} << 20); }));
    EXPECT_FALSE(succeeds([] { return limitMemory(size_t{400} << 20) && limitMemory(size_t{600} << 20); }))
        << "not for good";
}

TEST_F(ConfinementTest, FilesOfTheUserCannotBeOpenedNorMadeNorLookedAt) {
    const std::string made = letter + ".new";
    expectRefused({
        {"read", [&] { return canOpen(letter, O_RDONLY); }},
        {"write", [&] { return canOpen(letter, O_WRONLY); }},
        {"create", [&] { return canOpen(made, O_CREAT | O_WRONLY); }},
        {"name", [&] { return canOpen(letter, O_PATH); }},
        {"empty by name", [&] { return ::truncate(letter.c_str(), 7) == 0; }},
        {"stat",
         [&] {
             struct stat s {};
             return ::stat(letter.c_str(), &s) == 0;
         }},
        {"lstat",
         [&] {
             struct stat s {};
             return ::lstat(letter.c_str(), &s) == 0;
         }},
        {"statx",
         [&] {
             struct statx s {};
             return ::statx(AT_FDCWD, letter.c_str(), 0, STATX_ALL, &s) == 0;
         }},
        {"access", [&] { return ::access(letter.c_str(), R_OK) == 0; }},
        {"readlink",
         [] {
             std::array<char, 9> text{};
             return ::readlink("/proc/self/exe", text.data(), text.size()) > 0;
         }},
        {"rename", [&] { return ::rename(letter.c_str(), letter.c_str()) == 0; }},
        {"chmod", [&] { return ::chmod(letter.c_str(), 0600) == 0; }},
        {"change folder", [] { return ::chdir("/") == 0; }},
        {"delete", [&] { return ::unlink((letter + ".none").c_str()) == 0 || errno == ENOENT; }},
    });
}

TEST_F(ConfinementTest, FontsCanBeReadAndNothingElseBeDoneToThem) {
    expectRefused({
        {"empty", [&] { return canOpen(font, O_RDONLY | O_TRUNC); }},
        {"write", [&] { return canOpen(font, O_RDWR); }},
        {"create", [&] { return canOpen(font + ".new", O_RDONLY | O_CREAT); }},
        {"name", [&] { return canOpen(font, O_PATH); }},
        {"signal when changed", [&] { return canOpen(font, O_RDONLY | O_ASYNC); }},
        {"stat",
         [&] {
             struct stat s {};
             return ::stat(font.c_str(), &s) == 0;
         }},
        {"list", [&] { return canOpen(policy.readableFolders.front(), O_RDONLY | O_DIRECTORY); }},
        {"open in a newer way", [&] { return canCall(SYS_openat2, AT_FDCWD, font.c_str(), nullptr, 24); }},
    });
}

TEST_F(ConfinementTest, WithoutFoldersNoFileCanBeOpenedAtAll) {
    policy.readableFolders.clear();
    expectRefused({
        {"font", [&] { return canOpen(font, O_RDONLY); }},
        {"device", [] { return canOpen("/dev/null", O_RDONLY); }},
        {"folder", [] { return canOpen("/", O_RDONLY | O_DIRECTORY); }},
        {"own memory", [] { return canOpen("/proc/self/mem", O_RDWR); }},
        {"old way", [&] { return canCall(SYS_open, font.c_str(), O_RDONLY); }},
        {"newer way", [&] { return canCall(SYS_openat2, AT_FDCWD, font.c_str(), nullptr, 24); }},
        {"a thread", canStartThread},
        {"socket", [] { return ::socket(AF_UNIX, SOCK_STREAM, 0) >= 0; }},
        {"connect", [] { return canCall(SYS_connect, 0, nullptr, 0); }},
        {"kill", [] { return ::kill(::getppid(), 0) == 0; }},
    });
}

TEST_F(ConfinementTest, NoOtherProcessCanBeReached) {
    const pid_t parent = ::getpid();
    rlimit all{};
    const auto ends = pair();
    const auto command = [&](int number, long value) {
        return [=] { return ::fcntl(ends[0], number, value) == 0; };
    };
    expectRefused({
        {"fork",
         [] {
             const pid_t child = ::fork();
             if (child == 0)
                 ::_exit(0);
             return child > 0;
         }},
        {"vfork", [] { return canCall(SYS_unshare, 0); }},
        {"exec",
         [] {
             ::execl("/bin/true", "true", nullptr);
             return false;
         }},
        {"kill", [=] { return ::kill(parent, 0) == 0; }},
        {"tgkill", [=] { return ::syscall(SYS_tgkill, parent, parent, 0) == 0; }},
        {"sigqueue", [=] { return ::sigqueue(parent, 0, {}) == 0; }},
        {"pidfd", [=] { return ::syscall(SYS_pidfd_open, parent, 0) >= 0; }},
        {"owner of signals", command(F_SETOWN, parent)},
        {"which signal", command(F_SETSIG, SIGKILL)},
        {"signals on", command(F_SETFL, O_ASYNC)},
        {"signals on by ioctl",
         [&] {
             int on = 1;
             return ::ioctl(ends[0], FIOASYNC, &on) == 0;
         }},
        {"limits", [&] { return ::prlimit(parent, RLIMIT_NOFILE, nullptr, &all) == 0; }},
        {"other limits", [&] { return ::prlimit(0, RLIMIT_NOFILE, nullptr, &all) == 0; }},
        {"priority", [=] { return ::getpriority(PRIO_PROCESS, static_cast<id_t>(parent)) >= 0; }},
        {"affinity", [=] { return canCall(SYS_sched_getaffinity, parent, 0, nullptr); }},
        {"scheduler", [=] { return canCall(SYS_sched_setscheduler, parent, -1, nullptr); }},
        {"memory", [=] { return canCall(SYS_process_vm_readv, 1 << 30, nullptr, 0, nullptr, 0, 0); }},
        {"trace", [] { return ::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) == 0; }},
        {"survive the program", [] { return ::prctl(PR_SET_PDEATHSIG, 0) == 0; }},
    });
}

TEST_F(ConfinementTest, NothingInTheKernelCanBeMade) {
    const auto named = [](long call, auto... arguments) {
        return [=] { return canCall(call, arguments...); };
    };
    expectRefused({
        {"internet", named(SYS_socket, AF_INET, SOCK_STREAM, 0)},
        {"local socket", named(SYS_socket, AF_UNIX, SOCK_STREAM, 0)},
        {"socket pair",
         [] {
             std::array<int, 2> s{};
             return ::socketpair(AF_UNIX, SOCK_STREAM, 0, s.data()) == 0;
         }},
        {"message to an address",
         [] {
             const auto ends = std::array<int, 2>{0, 1};
             const sockaddr address{};
             return canCall(SYS_sendto, ends[0], "", 0, 0, &address, sizeof address);
         }},
        {"memory file", named(SYS_memfd_create, "a", 0)},
        {"message queue", named(SYS_mq_open, "/a", O_RDONLY, 0, nullptr)},
        {"shared memory", named(SYS_shmget, 0, 4096, 0600)},
        {"keys", named(SYS_keyctl, 0, -1, 0)},
        {"rings", named(SYS_io_uring_setup, 0, nullptr)},
        {"page faults", named(SYS_userfaultfd, 1 << 30)},
        {"typing on a terminal", named(SYS_ioctl, 0, TIOCSTI, "a")},
        {"timer", named(SYS_timerfd_create, CLOCK_MONOTONIC, 0)},
        {"session", named(SYS_setsid)},
    });
}

TEST_F(ConfinementTest, ThreadsAreThoseThatWereStartedBeforeAndAreConfinedToo) {
    expectRefused({{"a thread", canStartThread}});
    std::atomic<bool> isRunning = false;
    std::atomic<bool> isConfined = false;
    std::atomic<int> socketOfThread = -1;
    const auto waitAndTry = [&] {
        isRunning = true;
        isRunning.notify_one();
        isConfined.wait(false);
        socketOfThread = ::socket(AF_UNIX, SOCK_STREAM, 0) >= 0 ? 1 : 0;
        socketOfThread.notify_one();
        isConfined.wait(true);  // A sanitizer could not look at the thread's memory any more when it ends.
    };
    policy.prepare = [&] {
        std::thread(waitAndTry).detach();
        isRunning.wait(false);
    };
    EXPECT_TRUE(succeeds([&] {
        isConfined = true;
        isConfined.notify_one();
        socketOfThread.wait(-1);
        return socketOfThread == 0;
    }));
}

TEST_F(ConfinementTest, PreparesWithNothingButTheFoldersInReach) {
    if (::syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION) < 0)
        GTEST_SKIP() << "this kernel cannot tell folders apart";
    const bool canRefuseSignals =
        ::syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION) >= 6;
    const pid_t parent = ::getpid();
    bool seesFont = false;
    bool seesLetter = true;
    bool signalsParent = true;
    policy.prepare = [&] {
        seesFont = canOpen(font, O_RDONLY) && canOpen(policy.readableFolders.front(), O_DIRECTORY);
        seesLetter = canOpen(letter, O_RDONLY) || canOpen(letter, O_WRONLY);
        signalsParent = ::kill(parent, 0) == 0;
    };
    EXPECT_TRUE(succeeds([&] { return seesFont && !seesLetter && signalsParent != canRefuseSignals; }));
}

TEST_F(ConfinementTest, LeavesInheritedDescriptorsBehind) {
    const int terminal = ::posix_openpt(O_RDWR | O_NOCTTY);
    ASSERT_GE(terminal, 0);
    EXPECT_TRUE(succeeds([] { return true; }));
    const pid_t child = ::fork();
    if (child == 0) {
        for (int fd = 0; fd <= 6; ++fd)
            ::dup2(terminal, fd);
        const auto is = [](int fd, bool wanted) { return (::fcntl(fd, F_GETFD) >= 0) == wanted; };
        const bool isDone = leaveDescriptors(3);
        bool isRight = isDone && is(0, true) && is(1, true) && is(2, true) && is(3, true);
        for (int fd = 4; fd < 64; ++fd)
            isRight = isRight && is(fd, false);
        for (int fd = 0; fd < 3; ++fd)
            isRight = isRight && !::isatty(fd) && ::ptsname(fd) == nullptr;
        ::_exit(isRight ? 0 : 1);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
}
