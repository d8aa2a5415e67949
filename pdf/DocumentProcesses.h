#pragma once

#include "base/HelperProcess.h"

#include <memory>

#include <QString>
#include <QThreadPool>

namespace vellmora {

/// Starts the processes in which documents are read and written, one for each open document, and keeps a
/// spare one ready. May be used by several threads at a time, and must outlive the documents.
class DocumentProcesses {
public:
    /// `program` is the process' file.
    explicit DocumentProcesses(QString program);
    ~DocumentProcesses();

    /// The file that belongs to the running program.
    static QString installedProgram();

    /// Has a process started ahead of need. Returns at once.
    void prepare();
    /// The spare process, or a new one. Null where none can be started.
    std::unique_ptr<HelperProcess> take();

private:
    void startSpare();

    QString m_program;
    std::unique_ptr<HelperProcess> m_spare;  ///< known to the starter's thread only
    QThreadPool m_starter;  ///< one thread that stays: processes end with the thread that started them
};

}  // namespace vellmora
