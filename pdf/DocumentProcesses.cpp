#include "pdf/DocumentProcesses.h"

#include <utility>

namespace vellmora {

DocumentProcesses::DocumentProcesses(QString program, const DocumentLimits& limits)
    : m_program(std::move(program)), m_limits(limits) {}

DocumentProcesses::~DocumentProcesses() = default;

QString DocumentProcesses::installedProgram() {
    return HelperProcess::installed(QStringLiteral("vellmora-document"));
}

void DocumentProcesses::prepare() {
    m_starter.run([this] { startSpare(); });
}

void DocumentProcesses::startSpare() {
    if (!m_spare)
        m_spare = HelperProcess::start(m_program, HelperProcess::Talk::stream);
}

std::unique_ptr<HelperProcess> DocumentProcesses::take() {
    const auto takeSpare = [this] {
        startSpare();
        return std::move(m_spare);
    };
    return m_starter.run(takeSpare).get();
}

}  // namespace vellmora
