#include "engine/file/OpenFailure.h"

#include "base/SnapshotReader.h"
#include "engine/file/OpenFile.h"
#include "engine/objects/Qpdf.h"

#include <algorithm>
#include <exception>
#include <new>
#include <optional>

#include <qpdf/QPDFExc.hh>

namespace vellmora {

namespace {

/// Within so many bytes readers look for a PDF's first line.
constexpr size_t headerRange = 1024;

bool hasHeader(const SnapshotReader& content) {
    const std::string_view start = content.range(0, std::min(headerRange, content.size()));
    return start.find("%PDF-") != std::string_view::npos;
}

/// libqpdf's reason; nothing where it finds none that it has a number for.
std::optional<qpdf_error_code_e> libraryFailure(const SnapshotReader& content) {
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

}  // namespace

DocumentFailure openFailure(const SnapshotReader& content) {
    content.requireReadable();
    if (content.size() == 0)
        return DocumentFailure::empty;
    const auto failure = libraryFailure(content);
    if (failure == qpdf_e_password)
        return DocumentFailure::needsPassword;
    if (failure == qpdf_e_unsupported)
        return DocumentFailure::unknownEncryption;
    return hasHeader(content) ? DocumentFailure::tooDamaged : DocumentFailure::noPdf;
}

}  // namespace vellmora
