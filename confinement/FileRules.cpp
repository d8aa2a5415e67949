#include "confinement/FileRules.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <fcntl.h>
#include <linux/landlock.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace vellmora {

namespace {

/// As the kernel takes it. Declared here, since the headers of an older system end it after the first field.
struct Rules {
    std::uint64_t files;
    std::uint64_t network;
    std::uint64_t scopes;
};

/// How many of the bits of each field the versions of the kernel's interface know, from the first on.
struct KnownBits {
    unsigned files;
    unsigned network;
    unsigned scopes;
};
constexpr std::array<KnownBits, 6> knownBits{{
    {13, 0, 0},
    {14, 0, 0},  // moving between folders
    {15, 0, 0},  // truncating
    {15, 2, 0},  // binding and connecting with TCP
    {16, 2, 0},  // commands for devices
    {16, 2, 2},  // abstract sockets, signals
}};

constexpr std::uint64_t lowest(unsigned bits) {
    return (std::uint64_t{1} << bits) - 1;
}

/// A descriptor of rules that refuse all that this kernel can refuse; negative where that is nothing.
int makeRuleset() {
    const long version = ::syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION);
    if (version < 1)
        return -1;
    const auto last = std::min(static_cast<size_t>(version), knownBits.size()) - 1;
    const Rules rules{lowest(knownBits[last].files), lowest(knownBits[last].network),
                      lowest(knownBits[last].scopes)};
    // An older kernel takes fields that it does not know where they are zero.
    return static_cast<int>(::syscall(SYS_landlock_create_ruleset, &rules, sizeof rules, 0));
}

void allowReading(int ruleset, const std::string& folder) {
    landlock_path_beneath_attr rule{};
    rule.allowed_access = LANDLOCK_ACCESS_FS_READ_FILE | LANDLOCK_ACCESS_FS_READ_DIR;
    rule.parent_fd = ::open(folder.c_str(), O_PATH | O_CLOEXEC);
    if (rule.parent_fd < 0)
        return;
    ::syscall(SYS_landlock_add_rule, ruleset, LANDLOCK_RULE_PATH_BENEATH, &rule, 0);
    ::close(rule.parent_fd);
}

}  // namespace

bool allowOnlyReading(const std::vector<std::string>& folders) {
    const int ruleset = makeRuleset();
    if (ruleset < 0)
        return false;
    for (const std::string& folder : folders)
        allowReading(ruleset, folder);
    const bool isRestricted = ::syscall(SYS_landlock_restrict_self, ruleset, 0) == 0;
    ::close(ruleset);
    return isRestricted;
}

}  // namespace vellmora
