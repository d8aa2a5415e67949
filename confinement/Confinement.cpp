#include "confinement/Confinement.h"

#include "confinement/CallFilter.h"
#include "confinement/FileRules.h"

#include <csignal>
#include <fcntl.h>
#include <fstream>
#include <limits>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

namespace vellmora {

namespace {

constexpr rlim_t mostOpenFiles = 64;

// The sanitizers take terabytes of addresses for themselves.
#if defined __SANITIZE_ADDRESS__ || defined __SANITIZE_THREAD__
constexpr bool areAddressesFree = true;
#else
constexpr bool areAddressesFree = false;
#endif

bool limit(__rlimit_resource resource, rlim_t value) {
    const rlimit both{value, value};
    return ::setrlimit(resource, &both) == 0;
}

/// In bytes; 0 where it cannot be told. Engines reserve gigabytes of addresses when they are loaded, of which
/// they use little.
std::uint64_t addressesTaken() {
    std::uint64_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    return pages * static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE));
}

void limitResources() {
    limit(RLIMIT_CORE, 0);
    limit(RLIMIT_FSIZE, 0);
    limit(RLIMIT_NOFILE, mostOpenFiles);
}

}  // namespace

bool leaveDescriptors(int lastKept) {
    const int nowhere = ::open("/dev/null", O_RDWR | O_CLOEXEC);
    if (nowhere < 0)
        return false;
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (nowhere != stream && ::dup2(nowhere, stream) < 0)
            return false;
    }
    const auto first = static_cast<unsigned>(lastKept) + 1;
    return ::close_range(first, std::numeric_limits<unsigned>::max(), 0) == 0;
}

bool limitMemory(std::uint64_t bytes) {
    return areAddressesFree || limit(RLIMIT_AS, bytes);
}

bool confineProcess(const ConfinementPolicy& policy) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    ::prctl(PR_SET_DUMPABLE, 0);
    if (::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0)
        return false;
    limitResources();
    if (policy.memory && !areAddressesFree) {
        limit(RLIMIT_AS, addressesTaken() + *policy.memory);
        limit(RLIMIT_DATA, *policy.memory);
    }
    const bool canOpenFiles = allowOnlyReading(policy.readableFolders) && !policy.readableFolders.empty();
    if (canOpenFiles && policy.prepare)
        policy.prepare();
    return filterCalls(canOpenFiles);
}

}  // namespace vellmora
