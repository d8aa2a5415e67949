#pragma once

#include "base/HelperProcess.h"
#include "base/SerialQueue.h"

#include <chrono>
#include <cstdint>
#include <memory>

#include <QString>

namespace vellmora {

/// What the process of a document may take. Far above what real documents need.
struct DocumentLimits {
    std::chrono::milliseconds start{10000};         ///< until it is ready, also on a machine that is busy
    std::chrono::milliseconds silence{12000};       ///< while it works it says so far more often
    std::chrono::milliseconds view{4000};           ///< for a look at one page
    std::uint64_t memory = std::uint64_t{1} << 30;  ///< in bytes, beside the source
    /// What a new file may have beside the source, in bytes; it may have the source several times, where it
    /// is not just a look at a page.
    qint64 bytesForView = 64 << 20;
    qint64 bytesForFile = 1 << 30;
};

/// Starts the processes in which documents are read and written, one for each open document, and keeps a
/// spare one ready. May be used by several threads at a time, and must outlive the documents.
class DocumentProcesses {
public:
    /// `program` is the process' file.
    explicit DocumentProcesses(QString program, const DocumentLimits& limits = {});
    ~DocumentProcesses();

    /// The file that belongs to the running program.
    static QString installedProgram();

    const DocumentLimits& limits() const { return m_limits; }

    /// Has a process started ahead of need. Returns at once.
    void prepare();
    /// The spare process, or a new one. Null where none can be started.
    std::unique_ptr<HelperProcess> take();

private:
    void startSpare();

    QString m_program;
    DocumentLimits m_limits;
    std::unique_ptr<HelperProcess> m_spare;  ///< known to the starter's thread only
    SerialQueue m_starter;  ///< its thread stays: processes end with the one that started them
};

}  // namespace vellmora
