// The document process: reads one document and makes new files of its pages. It trusts nothing in it, and the
// program trusts nothing that comes back.

#include "base/HelperProcess.h"
#include "confinement/Confinement.h"
#include "engine/process/DocumentServer.h"

#include <unistd.h>

using namespace vellmora;

/// For jemalloc: memory that is free goes back soon. A long document is saved in parts, and the next part is
/// not to stand beside what the last one has left.
extern "C" const char* malloc_conf;              // NOLINT(readability-identifier-naming)
const char* malloc_conf = "dirty_decay_ms:100";  // NOLINT(readability-identifier-naming): its own name

int main() {
    if (!leaveDescriptors(helperSocket))
        return 1;
    ConfinementPolicy policy;
    // The limit comes with the document.
    policy.memory.reset();
    if (!confineProcess(policy))
        return 1;
    ReplyStream().send(DocumentReplyKind::ready);
    DocumentServer(helperSocket).run();
    // Without destructors: they might call what is not permitted any more.
    ::_exit(0);
}
