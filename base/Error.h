#pragma once

#include <exception>
#include <string>

#include <QString>

namespace vellmora {

/// The one error type that the program's own code throws.
///
/// Exceptions of the libraries beneath (libqpdf, the standard library) never leave the code that calls them;
/// they are turned into this type there. `localizedDescription()` is a German text that is fit for the status
/// line.
class Error : public std::exception {
public:
    /// Domain of errors that the program raises itself.
    static const QString vellmoraDomain;
    /// Domain of file-system errors; `code()` is the `errno` value.
    static const QString posixDomain;
    /// Domain of failures while a PDF is read or written.
    static const QString pdfDomain;

    /// `reason` is the cause alone, where the description names also what was tried.
    Error(QString domain, int code, QString localizedDescription, const QString& reason = {});

    /// The exception that is being handled, of whatever kind, as an error with a text for the status line.
    /// Inside of a `catch` only.
    static Error current();

    const QString& domain() const { return m_domain; }
    int code() const { return m_code; }
    const QString& localizedDescription() const { return m_localizedDescription; }
    /// A sentence for a message that has already said what failed; the description where there is no other.
    const QString& reason() const { return m_reason; }
    const char* what() const noexcept override { return m_what.c_str(); }

private:
    QString m_domain;
    int m_code;
    QString m_localizedDescription;
    QString m_reason;
    std::string m_what;
};

}  // namespace vellmora
