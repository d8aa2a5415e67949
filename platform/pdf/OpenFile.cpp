#include "platform/pdf/OpenFile.h"

#include <qpdf/QPDFLogger.hh>

namespace vellmora {

void openFile(QPDF& file, const QByteArray& bytes, Damage damage) {
    const auto silent = QPDFLogger::create();
    silent->setInfo(silent->discard());
    silent->setWarn(silent->discard());
    silent->setError(silent->discard());
    file.setLogger(silent);
    file.setSuppressWarnings(true);
    file.setAttemptRecovery(damage == Damage::recover);
    file.processMemoryFile("", bytes.constData(), static_cast<size_t>(bytes.size()), "");
    file.setAttemptRecovery(true);
}

}  // namespace vellmora
