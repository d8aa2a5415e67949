#pragma once

#include "base/Error.h"

namespace vellmora {

/// The failures of an export, beside the file errors of `base/`.
class PDFExportError : public Error {
public:
    enum class Case { couldNotCreateConsumer, couldNotCreateContext };

    /// `reason`: a sentence that follows the case's own, where more is known.
    explicit PDFExportError(Case which, const QString& reason = {});

    Case which() const { return m_case; }
    bool operator==(const PDFExportError& other) const { return m_case == other.m_case; }

    /// The text of the case alone.
    static QString errorDescription(Case which);

private:
    Case m_case;
};

}  // namespace vellmora
