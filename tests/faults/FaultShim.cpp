// Stands between the program and the system's file calls, and lets chosen ones fail. Linked to a test, or
// loaded before any program:
//
//   LD_PRELOAD=libvellmora_faults.so VELLMORA_FAULTS="KINDS NTH ERRNO STAYS AFTER FOLDER" program
//
// with the fields of `Plan` as numbers; ERRNO -1 ends the process with SIGKILL.

#include "tests/faults/FaultShim.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>
#include <fcntl.h>
#include <sstream>
#include <string_view>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace vellmora::faults {

namespace {

Plan plan;
std::atomic<bool> isArmed = false;
std::atomic<int> count = 0;

template <typename Function>
Function* next(const char* name) {
    return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

bool isBelow(std::string_view path) {
    const auto startsWith = [&](const std::string& folder) {
        return path.substr(0, folder.size()) == folder;
    };
    return startsWith(plan.folder) && (plan.except.empty() || !startsWith(plan.except));
}

bool concerns(const char* path) {
    return isArmed && isBelow(path);
}

bool concerns(int fd) {
    if (!isArmed)
        return false;
    const std::string link = "/proc/self/fd/" + std::to_string(fd);
    std::array<char, PATH_MAX> path;
    const ssize_t length = ::readlink(link.c_str(), path.data(), path.size());
    return length > 0 && isBelow({path.data(), static_cast<size_t>(length)});
}

[[noreturn]] void die() {
    ::kill(::getpid(), SIGKILL);
    for (;;)
        ::pause();
}

/// Makes the call, or lets it fail. `dying` is done in its place where the process ends after it.
template <typename Target, typename Call, typename Dying>
auto pass(Kind kind, Target target, Call call, Dying dying) -> decltype(call()) {
    if (!concerns(target) || !(plan.kinds & kind))
        return call();
    const int number = ++count;
    const bool fails = plan.nth > 0 && (number == plan.nth || (plan.stays && number > plan.nth));
    if (!fails)
        return call();
    if (plan.error == Plan::killed) {
        if (plan.isAfter)
            dying();
        die();
    }
    if (kind == closeCall)
        call();  // a descriptor is gone also where closing it reports a failure
    errno = plan.error;
    return decltype(call())(-1);
}

template <typename Target, typename Call>
auto pass(Kind kind, Target target, Call call) -> decltype(call()) {
    return pass(kind, target, call, call);
}

bool armFromEnvironment() {
    const char* words = std::getenv("VELLMORA_FAULTS");
    if (!words)
        return false;
    Plan fromEnvironment;
    std::istringstream stream(words);
    stream >> fromEnvironment.kinds >> fromEnvironment.nth >> fromEnvironment.error >>
        fromEnvironment.stays >> fromEnvironment.isAfter >> fromEnvironment.folder;
    ::unsetenv("LD_PRELOAD");  // what the program starts is left alone
    arm(fromEnvironment);
    return true;
}

/// As soon as the program is loaded, and after the variables above, which it sets.
[[maybe_unused]] const bool isArmedFromEnvironment = armFromEnvironment();

}  // namespace

void arm(const Plan& newPlan) {
    isArmed = false;
    plan = newPlan;
    count = 0;
    isArmed = true;
}

int disarm() {
    isArmed = false;
    return count;
}

}  // namespace vellmora::faults

using namespace vellmora::faults;

// NOLINTBEGIN: these are the C library's own names and types
extern "C" {

static mode_t modeArgument(int flags, va_list arguments) {
    return (flags & (O_CREAT | O_TMPFILE)) ? va_arg(arguments, mode_t) : 0;
}

int open(const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeArgument(flags, arguments);
    va_end(arguments);
    return pass(openCall, path, [&] { return next<int(const char*, int, ...)>("open")(path, flags, mode); });
}

int open64(const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeArgument(flags, arguments);
    va_end(arguments);
    return pass(openCall, path,
                [&] { return next<int(const char*, int, ...)>("open64")(path, flags, mode); });
}

int flock(int fd, int operation) noexcept {
    return pass(lockCall, fd, [&] { return next<int(int, int)>("flock")(fd, operation); });
}

int mkdir(const char* path, mode_t mode) noexcept {
    return pass(openCall, path, [&] { return next<int(const char*, mode_t)>("mkdir")(path, mode); });
}

ssize_t write(int fd, const void* bytes, size_t length) {
    const auto call = next<ssize_t(int, const void*, size_t)>("write");
    return pass(
        writeCall, fd, [&] { return call(fd, bytes, length); }, [&] { call(fd, bytes, length / 2); });
}

// What is synced here need not outlive a power failure, and hundreds of runs need not wait for the disk.
int fsync(int fd) {
    return pass(syncCall, fd, [] { return 0; });
}

int close(int fd) {
    return pass(closeCall, fd, [&] { return next<int(int)>("close")(fd); });
}

int rename(const char* from, const char* to) noexcept {
    return pass(renameCall, from, [&] { return next<int(const char*, const char*)>("rename")(from, to); });
}

int renameat2(int fromFolder, const char* from, int toFolder, const char* to, unsigned flags) noexcept {
    return pass(renameCall, from, [&] {
        return next<int(int, const char*, int, const char*, unsigned)>("renameat2")(fromFolder, from,
                                                                                    toFolder, to, flags);
    });
}

int unlink(const char* path) noexcept {
    return pass(removeCall, path, [&] { return next<int(const char*)>("unlink")(path); });
}

int unlinkat(int folder, const char* path, int flags) noexcept {
    const auto call = [&] { return next<int(int, const char*, int)>("unlinkat")(folder, path, flags); };
    return *path == '/' ? pass(removeCall, path, call) : pass(removeCall, folder, call);
}

int rmdir(const char* path) noexcept {
    return pass(removeCall, path, [&] { return next<int(const char*)>("rmdir")(path); });
}

int fchown(int fd, uid_t owner, gid_t group) noexcept {
    return pass(attributeCall, fd, [&] { return next<int(int, uid_t, gid_t)>("fchown")(fd, owner, group); });
}

int fchmod(int fd, mode_t mode) noexcept {
    return pass(attributeCall, fd, [&] { return next<int(int, mode_t)>("fchmod")(fd, mode); });
}

int fsetxattr(int fd, const char* name, const void* value, size_t size, int flags) noexcept {
    return pass(attributeCall, fd, [&] {
        return next<int(int, const char*, const void*, size_t, int)>("fsetxattr")(fd, name, value, size,
                                                                                  flags);
    });
}

int fremovexattr(int fd, const char* name) noexcept {
    return pass(attributeCall, fd, [&] { return next<int(int, const char*)>("fremovexattr")(fd, name); });
}

ssize_t lgetxattr(const char* path, const char* name, void* value, size_t size) noexcept {
    return pass(attributeCall, path, [&] {
        return next<ssize_t(const char*, const char*, void*, size_t)>("lgetxattr")(path, name, value, size);
    });
}

ssize_t llistxattr(const char* path, char* names, size_t size) noexcept {
    return pass(attributeCall, path,
                [&] { return next<ssize_t(const char*, char*, size_t)>("llistxattr")(path, names, size); });
}

}  // extern "C"
// NOLINTEND
