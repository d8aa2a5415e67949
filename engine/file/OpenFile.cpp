#include "engine/file/OpenFile.h"

#include "engine/file/FileInput.h"

#include <memory>

#include <qpdf/QPDFLogger.hh>

namespace vellmora {

void openFile(QPDF& file, const SnapshotReader& content, Damage damage) {
    const auto silent = QPDFLogger::create();
    silent->setInfo(silent->discard());
    silent->setWarn(silent->discard());
    silent->setError(silent->discard());
    file.setLogger(silent);
    file.setSuppressWarnings(true);
    file.setAttemptRecovery(damage == Damage::recover);
    file.processInputSource(std::make_shared<FileInput>(content), "");
    file.setAttemptRecovery(true);
}

}  // namespace vellmora
