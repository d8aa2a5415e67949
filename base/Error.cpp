#include "base/Error.h"

#include <cerrno>
#include <new>
#include <utility>

namespace vellmora {

const QString Error::vellmoraDomain = QStringLiteral("Vellmora");
const QString Error::posixDomain = QStringLiteral("POSIX");
const QString Error::pdfDomain = QStringLiteral("PDF");

Error::Error(QString domain, int code, QString localizedDescription, const QString& reason)
    : m_domain(std::move(domain)),
      m_code(code),
      m_localizedDescription(std::move(localizedDescription)),
      m_reason(reason.isEmpty() ? m_localizedDescription : reason),
      m_what(m_localizedDescription.toStdString()) {}

Error Error::current() {
    try {
        throw;
    } catch (const Error& error) {
        return error;
    } catch (const std::bad_alloc&) {
        return Error(posixDomain, ENOMEM, QStringLiteral("Der Arbeitsspeicher reicht nicht aus."));
    } catch (...) {
        return Error(vellmoraDomain, 0, QStringLiteral("Ein unerwarteter Fehler ist aufgetreten."));
    }
}

}  // namespace vellmora
