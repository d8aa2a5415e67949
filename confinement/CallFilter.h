#pragma once

namespace vellmora {

/// Lets all threads of this process compute and use the descriptors that they have; every other system call
/// fails from now on, as if it were not permitted. Files can be opened for reading where `canOpenFiles`.
/// False where that cannot be had.
bool filterCalls(bool canOpenFiles);

}  // namespace vellmora
