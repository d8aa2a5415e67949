#include "renderer/Confinement.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <initializer_list>
#include <linux/landlock.h>
#include <sched.h>
#include <seccomp.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace vellmora {

namespace {

constexpr rlim_t memoryLimit = rlim_t{3} << 30;
constexpr std::initializer_list<const char*> fontFolders{
    "/usr/share/fonts", "/usr/local/share/fonts", "/usr/share/X11/fonts", "/usr/share/ghostscript/fonts"};

/// What a process needs that computes, waits and answers over the socket that it has.
constexpr std::initializer_list<int> callsOfDrawing{SCMP_SYS(read),
                                                    SCMP_SYS(pread64),
                                                    SCMP_SYS(write),
                                                    SCMP_SYS(writev),
                                                    SCMP_SYS(close),
                                                    SCMP_SYS(fstat),
                                                    SCMP_SYS(lseek),
                                                    SCMP_SYS(fcntl),
                                                    SCMP_SYS(recvmsg),
                                                    SCMP_SYS(sendto),
                                                    SCMP_SYS(sendmsg),
                                                    SCMP_SYS(poll),
                                                    SCMP_SYS(ppoll),
                                                    SCMP_SYS(mmap),
                                                    SCMP_SYS(munmap),
                                                    SCMP_SYS(mremap),
                                                    SCMP_SYS(mprotect),
                                                    SCMP_SYS(madvise),
                                                    SCMP_SYS(brk),
                                                    SCMP_SYS(futex),
                                                    SCMP_SYS(rt_sigaction),
                                                    SCMP_SYS(rt_sigprocmask),
                                                    SCMP_SYS(rt_sigreturn),
                                                    SCMP_SYS(sigaltstack),
                                                    SCMP_SYS(exit),
                                                    SCMP_SYS(exit_group),
                                                    SCMP_SYS(clock_gettime),
                                                    SCMP_SYS(clock_nanosleep),
                                                    SCMP_SYS(nanosleep),
                                                    SCMP_SYS(gettimeofday),
                                                    SCMP_SYS(getpid),
                                                    SCMP_SYS(gettid),
                                                    SCMP_SYS(getrandom),
                                                    SCMP_SYS(sched_yield),
                                                    SCMP_SYS(sched_getaffinity),
                                                    SCMP_SYS(sysinfo),
                                                    SCMP_SYS(restart_syscall),
                                                    SCMP_SYS(set_robust_list),
                                                    SCMP_SYS(eventfd2),
                                                    SCMP_SYS(pipe),
                                                    SCMP_SYS(pipe2),
                                                    SCMP_SYS(rseq)};

constexpr std::initializer_list<int> callsOfReadingFonts{
    SCMP_SYS(open),       SCMP_SYS(openat),   SCMP_SYS(newfstatat), SCMP_SYS(stat),
    SCMP_SYS(lstat),      SCMP_SYS(statx),    SCMP_SYS(access),     SCMP_SYS(faccessat),
    SCMP_SYS(faccessat2), SCMP_SYS(readlink), SCMP_SYS(getdents64)};

void limit(__rlimit_resource resource, rlim_t value) {
    const rlimit both{value, value};
    ::setrlimit(resource, &both);
}

void limitResources() {
    limit(RLIMIT_CORE, 0);
    limit(RLIMIT_FSIZE, 0);
#ifndef __SANITIZE_ADDRESS__  // the sanitizer takes terabytes of addresses for itself
    limit(RLIMIT_AS, memoryLimit);
#endif
}

/// Lets files beneath the font folders be read, and no other file be touched. False where the kernel cannot
/// do so.
bool allowOnlyFonts() {
    const landlock_ruleset_attr all{(LANDLOCK_ACCESS_FS_MAKE_SYM << 1) - 1};
    const auto ruleset = static_cast<int>(::syscall(SYS_landlock_create_ruleset, &all, sizeof all, 0));
    if (ruleset < 0)
        return false;
    for (const char* folder : fontFolders) {
        landlock_path_beneath_attr rule{};
        rule.allowed_access = LANDLOCK_ACCESS_FS_READ_FILE | LANDLOCK_ACCESS_FS_READ_DIR;
        rule.parent_fd = ::open(folder, O_PATH | O_CLOEXEC);
        if (rule.parent_fd < 0)
            continue;
        ::syscall(SYS_landlock_add_rule, ruleset, LANDLOCK_RULE_PATH_BENEATH, &rule, 0);
        ::close(rule.parent_fd);
    }
    const bool isRestricted = ::syscall(SYS_landlock_restrict_self, ruleset, 0) == 0;
    ::close(ruleset);
    return isRestricted;
}

bool allowCalls(scmp_filter_ctx filter, std::initializer_list<int> calls) {
    for (const int call : calls) {
        if (::seccomp_rule_add(filter, SCMP_ACT_ALLOW, call, 0) != 0)
            return false;
    }
    return true;
}

/// Threads may be started, for the toolkit's drawing; processes may not. The newer call hides its flags from
/// the filter: where it is said not to exist, the older one is used.
bool allowThreads(scmp_filter_ctx filter) {
    return ::seccomp_rule_add(filter, SCMP_ACT_ERRNO(ENOSYS), SCMP_SYS(clone3), 0) == 0 &&
           ::seccomp_rule_add(filter, SCMP_ACT_ALLOW, SCMP_SYS(clone), 1,
                              SCMP_A0(SCMP_CMP_MASKED_EQ, CLONE_THREAD, CLONE_THREAD)) == 0;
}

/// Every system call that is not named fails, as if it were not permitted.
bool filterSystemCalls(bool canOpenFiles) {
    scmp_filter_ctx filter = ::seccomp_init(SCMP_ACT_ERRNO(EPERM));
    if (!filter)
        return false;
    bool isComplete = allowCalls(filter, callsOfDrawing) && allowThreads(filter);
    if (canOpenFiles)
        isComplete = isComplete && allowCalls(filter, callsOfReadingFonts);
    const bool isLoaded = isComplete && ::seccomp_load(filter) == 0;
    ::seccomp_release(filter);
    return isLoaded;
}

}  // namespace

bool confineProcess() {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    ::prctl(PR_SET_DUMPABLE, 0);
    if (::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0)
        return false;
    limitResources();
    return filterSystemCalls(allowOnlyFonts());
}

}  // namespace vellmora
