#include "pdf/file/OpenFailure.h"

#include "base/FileSnapshot.h"
#include "pdf/file/OpenFile.h"
#include "pdf/objects/Qpdf.h"

#include <algorithm>
#include <exception>
#include <new>
#include <optional>

#include <qpdf/QPDFExc.hh>

namespace vellmora {

namespace {

/// Within so many bytes readers look for a PDF's first line.
constexpr size_t headerRange = 1024;

bool hasHeader(const FileSnapshot& content) {
    const std::string_view start = content.range(0, std::min(headerRange, content.size()));
    return start.find("%PDF-") != std::string_view::npos;
}

/// libqpdf's reason; nothing where it finds none that it has a number for.
std::optional<qpdf_error_code_e> libraryFailure(const FileSnapshot& content) {
    try {
        QPDF file;
        openFile(file, content, Damage::recover);
    } catch (const QPDFExc& error) {
        return error.getErrorCode();
    } catch (const std::bad_alloc&) {
        throw;
    } catch (
        const std::exception&) {  // NOLINT(bugprone-empty-catch): damaged in a way that it has no number for
    }
    return std::nullopt;
}

QString reasonOf(const FileSnapshot& content) {
    if (content.size() == 0)
        return QStringLiteral("Die Datei ist leer.");
    const auto failure = libraryFailure(content);
    if (failure == qpdf_e_password)
        return QStringLiteral("Die Datei ist mit einem Kennwort geschützt.");
    if (failure == qpdf_e_unsupported)
        return QStringLiteral("Die Datei ist auf eine unbekannte Art verschlüsselt.");
    if (!hasHeader(content))
        return QStringLiteral("Die Datei ist kein PDF.");
    return QStringLiteral("Die Datei ist zu stark beschädigt.");
}

}  // namespace

Error openFailure(const FileSnapshot& content) {
    content.requireReadable();
    return Error(Error::pdfDomain, 2, reasonOf(content));
}

}  // namespace vellmora
