#include "tests/faults/Wholeness.h"

#include "engine/objects/Qpdf.h"

#include <exception>

#include <QDirIterator>

namespace vellmora::test {

bool isWholePdf(const QByteArray& bytes, int pageCount) {
    try {
        QPDF pdf;
        pdf.setSuppressWarnings(true);
        pdf.processMemoryFile("", bytes.constData(), static_cast<size_t>(bytes.size()));
        return static_cast<int>(pdf.getAllPages().size()) == pageCount && !pdf.anyWarnings();
    } catch (const std::exception&) {
        return false;
    }
}

QStringList leftovers(const QString& folder) {
    QStringList names;
    QDirIterator all(folder, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                     QDirIterator::Subdirectories);
    while (all.hasNext()) {
        const QString name = QFileInfo(all.next()).fileName();
        if (name.startsWith(QStringLiteral(".vellmora-")) ||
            name.startsWith(QStringLiteral("settings.json.")))
            names.append(all.filePath());
    }
    return names;
}

}  // namespace vellmora::test
