#include "platform/error/Error.h"

#include <utility>

namespace vellmora {

const QString Error::vellmoraDomain = QStringLiteral("Vellmora");
const QString Error::posixDomain = QStringLiteral("POSIX");
const QString Error::pdfDomain = QStringLiteral("PDF");

Error::Error(QString domain, int code, QString localizedDescription)
    : m_domain(std::move(domain)),
      m_code(code),
      m_localizedDescription(std::move(localizedDescription)),
      m_what(m_localizedDescription.toStdString()) {}

}  // namespace vellmora
