#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace vellmora {

/// What a process keeps that confines itself.
struct ConfinementPolicy {
    /// Files beneath these folders can be read, and nothing else be done to them. Where there are none, or
    /// the kernel cannot tell folders apart (Landlock), no file can be opened at all.
    std::vector<std::string> readableFolders;
    /// In bytes that can be written, and of addresses beside those that are taken already. Nothing where
    /// `limitMemory` is to be called later.
    std::optional<std::uint64_t> memory = std::uint64_t{3} << 30;
    /// Runs when no file but those in the folders can be opened any more, but before system calls are
    /// refused: folders can be listed, and threads be started. They are confined as well, and stay the only
    /// ones. Does not run where no file can be opened at all.
    std::function<void()> prepare;
};

/// Lets the standard streams lead nowhere and closes all other descriptors above `lastKept`. To be called
/// first, since libraries open some of their own. False where that fails.
bool leaveDescriptors(int lastKept);

/// Gives up, for the rest of this process's life, all but computing, talking over sockets that it has, and
/// reading what the policy names: network, other processes, new threads, executable memory, and all other
/// files. Whether there is a file of some name can still be learned from the way in which opening it fails.
/// The process dies with the one that started it.
///
/// The limit of memory can be made tighter later (`limitMemory`).
///
/// To be called by a process of one thread. False where system calls cannot be refused; nothing from outside
/// may be read then.
bool confineProcess(const ConfinementPolicy& policy);

/// From now on this process gets no more addresses than that, in bytes, and cannot have more again. False
/// where it had less.
bool limitMemory(std::uint64_t bytes);

}  // namespace vellmora
