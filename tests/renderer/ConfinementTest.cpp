#include "renderer/Confinement.h"

#include <fcntl.h>
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QDir>
#include <QTemporaryDir>

using namespace vellmora;

namespace {

/// Whether `attempt` succeeds in a process that has confined itself.
bool succeedsConfined(const std::function<bool()>& attempt) {
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(confineProcess() && attempt() ? 0 : 1);
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

bool canOpen(const std::string& path, int flags) {
    return ::open(path.c_str(), flags, 0600) >= 0;
}

bool canTakeMemory(size_t bytes) {
    void* memory =
        ::mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    return memory != MAP_FAILED;
}

}  // namespace

TEST(ConfinementTest, DrawingStaysPossible) {
    EXPECT_TRUE(succeedsConfined([] { return true; }));
    EXPECT_TRUE(succeedsConfined([] { return canTakeMemory(size_t{500} << 20); }));
    if (canOpen("/usr/share/fonts", O_RDONLY)) {
        EXPECT_TRUE(succeedsConfined([] { return canOpen("/usr/share/fonts", O_RDONLY); }));
    }
}

TEST(ConfinementTest, MemoryIsLimited) {
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "the sanitizer takes terabytes of addresses for itself";
#endif
    constexpr size_t most = size_t{4} << 30;
    ASSERT_TRUE(canTakeMemory(most));
    EXPECT_FALSE(succeedsConfined([] { return canTakeMemory(most); }));
}

TEST(ConfinementTest, FilesOfTheUserCannotBeOpenedNorMade) {
    const QTemporaryDir folder;
    const std::string file = folder.filePath(QStringLiteral("contract.pdf")).toStdString();
    ASSERT_TRUE(canOpen(file, O_CREAT | O_RDWR));
    EXPECT_FALSE(succeedsConfined([&] { return canOpen(file, O_RDONLY); }));
    EXPECT_FALSE(succeedsConfined([&] { return canOpen(file, O_WRONLY); }));
    EXPECT_FALSE(succeedsConfined([&] { return canOpen(file + ".new", O_CREAT | O_WRONLY); }));
    EXPECT_FALSE(succeedsConfined([&] { return ::unlink(file.c_str()) == 0; }));
    EXPECT_FALSE(succeedsConfined([] { return canOpen("/etc/passwd", O_RDONLY); }));
}

TEST(ConfinementTest, NeitherTheNetworkNorOtherProcessesCanBeReached) {
    EXPECT_FALSE(succeedsConfined([] { return ::socket(AF_INET, SOCK_STREAM, 0) >= 0; }));
    EXPECT_FALSE(succeedsConfined([] { return ::socket(AF_UNIX, SOCK_STREAM, 0) >= 0; }));
    EXPECT_FALSE(succeedsConfined([] { return ::fork() >= 0; }));
    EXPECT_FALSE(succeedsConfined([] { return ::execl("/bin/true", "true", nullptr) != -1; }));
    EXPECT_FALSE(succeedsConfined([] { return ::kill(::getppid(), 0) == 0; }));
}
