#include "tests/faults/OrdinaryUser.h"

#include <unistd.h>

#include <QDirIterator>
#include <QFile>

namespace vellmora::test {

namespace {

constexpr uid_t nobody = 65534;

void give(const QString& path) {
    if (::lchown(QFile::encodeName(path).constData(), nobody, nobody) != 0)
        qFatal("cannot give %s away", qPrintable(path));
}

}  // namespace

OrdinaryUser::OrdinaryUser(const QString& folder) : m_wasRoot(::geteuid() == 0) {
    if (!m_wasRoot)
        return;
    give(folder);
    QDirIterator all(folder, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                     QDirIterator::Subdirectories);
    while (all.hasNext())
        give(all.next());
    // The real user too, since access(2) asks for that one.
    if (::setresuid(nobody, nobody, 0) != 0)
        qFatal("cannot become another user");
}

OrdinaryUser::~OrdinaryUser() {
    if (m_wasRoot && ::setresuid(0, 0, 0) != 0)
        qFatal("cannot become root again");
}

}  // namespace vellmora::test
