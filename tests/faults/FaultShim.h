#pragma once

#include <string>

namespace vellmora::faults {

/// The calls that can be made to fail.
enum Kind : unsigned {
    openCall = 1,  ///< also the making of files and folders
    writeCall = 2,
    syncCall = 4,
    closeCall = 8,
    renameCall = 16,
    removeCall = 32,
    attributeCall = 64,  ///< owner, permissions, extended attributes; also asking for them
    anyButRemove = 95,
    anyCall = 127,
    lockCall = 128,  ///< not among the above: a file system without locks is no failure
};

/// Which call fails, and how. Only calls on files below `folder` count, and not those below `except`.
struct Plan {
    std::string folder;
    unsigned kinds = anyCall;
    int nth = 0;              ///< 1-based; 0: none, calls are only counted
    int error = 0;            ///< `errno` of the failing call; `killed` ends the process in its place
    bool stays = false;       ///< all later calls of these kinds fail too
    bool isAfter = false;     ///< killed after the call instead of before it (a write: half way)
    std::string except = {};  ///< empty: nothing is excepted
    static constexpr int killed = -1;
};

/// Starts counting anew. Calls of other threads count as well.
void arm(const Plan& plan);
/// Nothing fails any more; answers how many calls were counted.
int disarm();

}  // namespace vellmora::faults
