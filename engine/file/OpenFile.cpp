#include "engine/file/OpenFile.h"

#include "engine/file/FileInput.h"

#include <memory>
#include <utility>

#include <qpdf/QPDFLogger.hh>

namespace vellmora {

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
    openFile(file, std::make_shared<FileInput>(content), damage);
}

void openFile(QPDF& file, const SnapshotReader& content, std::string table) {
    openFile(file, std::make_shared<FileInput>(content, std::move(table)), Damage::refuse);
}

}  // namespace vellmora
