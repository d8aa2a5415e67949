// The document process: reads one document and makes new files of its pages. It trusts nothing in it, and the
// program trusts nothing that comes back.

#include "base/HelperProcess.h"
#include "confinement/Confinement.h"
#include "engine/process/DocumentServer.h"

#include <unistd.h>

using namespace vellmora;

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
