#include "confinement/CallFilter.h"

#include <cerrno>
#include <fcntl.h>
#include <initializer_list>
#include <memory>
#include <seccomp.h>
#include <sys/mman.h>
#include <sys/resource.h>

namespace vellmora {

namespace {

/// What computing, waiting and answering need; the last two are what a thread calls that has just started.
constexpr std::initializer_list<int> harmlessCalls{
    SCMP_SYS(read),
    SCMP_SYS(pread64),
    SCMP_SYS(write),
    SCMP_SYS(close),
    SCMP_SYS(fstat),
    SCMP_SYS(lseek),
    SCMP_SYS(recvmsg),
    SCMP_SYS(poll),
    SCMP_SYS(ppoll),
    SCMP_SYS(munmap),
    SCMP_SYS(mremap),
    SCMP_SYS(madvise),
    SCMP_SYS(brk),
    SCMP_SYS(futex),
    SCMP_SYS(rt_sigaction),
    SCMP_SYS(rt_sigprocmask),
    SCMP_SYS(rt_sigreturn),
    SCMP_SYS(exit),
    SCMP_SYS(exit_group),
    SCMP_SYS(clock_gettime),
    SCMP_SYS(gettimeofday),
    SCMP_SYS(getpid),
    SCMP_SYS(gettid),
    SCMP_SYS(getrandom),
    SCMP_SYS(sched_yield),
    SCMP_SYS(sysinfo),
    SCMP_SYS(restart_syscall),
    SCMP_SYS(rseq),
    SCMP_SYS(set_robust_list),
};

#ifdef __SANITIZE_ADDRESS__
constexpr std::initializer_list<int> callsOfSanitizers{SCMP_SYS(sigaltstack), SCMP_SYS(pipe),
                                                       SCMP_SYS(pipe2)};
#else
constexpr std::initializer_list<int> callsOfSanitizers{};
#endif

/// Others set who is sent which signal when a descriptor becomes readable: any process, and any signal.
constexpr std::initializer_list<int> harmlessFileCommands{F_GETFD, F_SETFD, F_GETFL, F_DUPFD_CLOEXEC};

class CallFilter {
public:
    CallFilter() : m_context(::seccomp_init(SCMP_ACT_ERRNO(EPERM)), &::seccomp_release) {
        m_isComplete = m_context && ::seccomp_attr_set(m_context.get(), SCMP_FLTATR_CTL_TSYNC, 1) == 0;
    }

    template <typename... Conditions>
    void allow(int call, Conditions... conditions) {
        const auto count = static_cast<unsigned>(sizeof...(conditions));
        m_isComplete = m_isComplete &&
                       ::seccomp_rule_add(m_context.get(), SCMP_ACT_ALLOW, call, count, conditions...) == 0;
    }
    /// False where a rule is missing.
    bool load() { return m_isComplete && ::seccomp_load(m_context.get()) == 0; }

private:
    std::unique_ptr<void, decltype(&::seccomp_release)> m_context;
    bool m_isComplete = false;
};

/// The condition that an argument of type int has none of the bits. The upper half of its register may hold
/// anything.
scmp_arg_cmp hasNone(unsigned argument, unsigned bits) {
    return {argument, SCMP_CMP_MASKED_EQ, bits, 0};
}

scmp_arg_cmp is(unsigned argument, int value) {
    return {argument, SCMP_CMP_MASKED_EQ, 0xFFFFFFFF, static_cast<unsigned>(value)};
}

}  // namespace

bool filterCalls(bool canOpenFiles) {
    CallFilter filter;
    for (const int call : harmlessCalls)
        filter.allow(call);
    for (const int call : callsOfSanitizers)
        filter.allow(call);
    for (const int command : harmlessFileCommands)
        filter.allow(SCMP_SYS(fcntl), is(1, command));
    filter.allow(SCMP_SYS(mmap), hasNone(2, PROT_EXEC));
    filter.allow(SCMP_SYS(mprotect), hasNone(2, PROT_EXEC));
    // Of this process only.
    filter.allow(SCMP_SYS(sched_getaffinity), is(0, 0));
    // A tighter limit of its own memory.
    filter.allow(SCMP_SYS(prlimit64), is(0, 0), is(1, RLIMIT_AS));
    // To nobody but the other end.
    filter.allow(SCMP_SYS(sendto), scmp_arg_cmp{4, SCMP_CMP_EQ, 0, 0});
    // Neither for writing, nor emptied, made, or opened just for its name.
    if (canOpenFiles)
        filter.allow(SCMP_SYS(openat), hasNone(2, ~unsigned{O_CLOEXEC | O_LARGEFILE}));
    return filter.load();
}

}  // namespace vellmora
