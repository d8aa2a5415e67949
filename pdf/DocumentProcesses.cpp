#include "pdf/DocumentProcesses.h"

#include <future>
#include <utility>

namespace vellmora {

DocumentProcesses::DocumentProcesses(QString program, const DocumentLimits& limits)
    : m_program(std::move(program)), m_limits(limits) {
    m_starter.setMaxThreadCount(1);
    m_starter.setExpiryTimeout(-1);
}

DocumentProcesses::~DocumentProcesses() = default;

QString DocumentProcesses::installedProgram() {
    return HelperProcess::installed(QStringLiteral("vellmora-document"));
}

void DocumentProcesses::prepare() {
    m_starter.start([this] { startSpare(); });
}

void DocumentProcesses::startSpare() {
    if (!m_spare)
        m_spare = HelperProcess::start(m_program, HelperProcess::Talk::stream);
}

std::unique_ptr<HelperProcess> DocumentProcesses::take() {
    std::promise<std::unique_ptr<HelperProcess>> process;
    m_starter.start([&] {
        startSpare();
        process.set_value(std::move(m_spare));
    });
    return process.get_future().get();
}

}  // namespace vellmora
