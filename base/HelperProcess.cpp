#include "base/HelperProcess.h"

#include <array>
#include <csignal>
#include <fcntl.h>
#include <optional>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <utility>

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QThreadPool>

namespace vellmora {

namespace {

/// Starts the program with `socket` as its descriptor `helperSocket`; nothing where it cannot be started.
std::optional<pid_t> spawn(const QString& program, int socket) {
    QByteArray path = QFile::encodeName(program);
    std::array<char*, 2> arguments{path.data(), nullptr};
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_adddup2(&actions, socket, helperSocket);
    pid_t pid = 0;
    const int error = ::posix_spawn(&pid, path.constData(), &actions, nullptr, arguments.data(), environ);
    ::posix_spawn_file_actions_destroy(&actions);
    return error == 0 ? std::optional(pid) : std::nullopt;
}

}  // namespace

HelperProcess::HelperProcess(pid_t pid, FileDescriptor socket) : m_pid(pid), m_socket(std::move(socket)) {}

std::unique_ptr<HelperProcess> HelperProcess::start(const QString& program, Talk talk) {
    const int type = talk == Talk::packets ? SOCK_SEQPACKET : SOCK_STREAM;
    std::array<int, 2> ends{};
    if (::socketpair(AF_UNIX, type | SOCK_CLOEXEC, 0, ends.data()) != 0)
        return nullptr;
    FileDescriptor ours(ends[0]);
    FileDescriptor theirs(ends[1]);
    // Where it is that very number already, duplicating it onto itself would leave it closed at the program's
    // start.
    if (theirs.get() == helperSocket)
        theirs = FileDescriptor(::fcntl(theirs.get(), F_DUPFD_CLOEXEC, helperSocket + 1));
    const std::optional<pid_t> pid = spawn(program, theirs.get());
    if (!pid)
        return nullptr;
    return std::unique_ptr<HelperProcess>(new HelperProcess(*pid, std::move(ours)));
}

HelperProcess::~HelperProcess() {
    // Also ends a process that was stopped.
    ::kill(m_pid, SIGKILL);
    // It is gone once its memory is given back, which takes a while where it has gigabytes.
    QThreadPool::globalInstance()->start([pid = m_pid] { ::waitpid(pid, nullptr, 0); });
}

QString HelperProcess::installed(const QString& name) {
    const QString folder = QCoreApplication::applicationDirPath();
    const QString inBuildTree = folder + QStringLiteral("/libexec/vellmora/") + name;
    return QFileInfo::exists(inBuildTree) ? inBuildTree
                                          : folder + QStringLiteral("/" VELLMORA_HELPER_DIR "/") + name;
}

}  // namespace vellmora
