#include "engine/file/OpenFile.h"

#include "engine/file/FileInput.h"

#include <dlfcn.h>
#include <memory>
#include <utility>

#include <qpdf/QPDFLogger.hh>

namespace vellmora {

/// Where libqpdf deciphers with GnuTLS, and that has not made itself ready (gnutls.h, "gnutls_global_init").
/// It counts its calls, and does nothing with later ones.
static void prepareDeciphering() {
    using Initialize = int (*)();
    if (const auto initialize = reinterpret_cast<Initialize>(::dlsym(RTLD_DEFAULT, "gnutls_global_init")))
        initialize();
}

static void openFile(QPDF& file, const std::shared_ptr<FileInput>& input, Damage damage) {
    const auto silent = QPDFLogger::create();
    silent->setInfo(silent->discard());
    silent->setWarn(silent->discard());
    silent->setError(silent->discard());
    file.setLogger(silent);
    file.setSuppressWarnings(true);
    file.setAttemptRecovery(damage == Damage::recover);
    file.processInputSource(input, "");
    file.setAttemptRecovery(true);
}

void openFile(QPDF& file, const SnapshotReader& content, Damage damage) {
    prepareDeciphering();
    openFile(file, std::make_shared<FileInput>(content), damage);
}

void openFile(QPDF& file, const SnapshotReader& content, std::string table) {
    openFile(file, std::make_shared<FileInput>(content, std::move(table)), Damage::refuse);
}

}  // namespace vellmora
