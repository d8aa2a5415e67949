#include "base/AccessList.h"

#include <QtEndian>

namespace vellmora {

namespace {

// A version number of 32 bits; then for each entry its kind and its permissions (16 bits each) and the number
// of whom it names (32 bits). All of it is little-endian. (linux/posix_acl_xattr.h)
constexpr quint32 knownVersion = 2;
constexpr qsizetype headerSize = 4;
constexpr qsizetype entrySize = 8;
constexpr qsizetype permissionsOffset = 2;

}  // namespace

std::optional<AccessList> AccessList::parse(const QByteArray& bytes) {
    if (bytes.size() < headerSize || (bytes.size() - headerSize) % entrySize != 0 ||
        qFromLittleEndian<quint32>(bytes.constData()) != knownVersion)
        return std::nullopt;
    return AccessList(bytes);
}

std::optional<unsigned> AccessList::permissions(Entry entry) const {
    const qsizetype position = positionOf(entry);
    if (position < 0)
        return std::nullopt;
    return qFromLittleEndian<quint16>(m_bytes.constData() + position + permissionsOffset);
}

void AccessList::setPermissions(Entry entry, unsigned permissions) {
    if (const qsizetype position = positionOf(entry); position >= 0)
        qToLittleEndian(static_cast<quint16>(permissions), m_bytes.data() + position + permissionsOffset);
}

qsizetype AccessList::positionOf(Entry entry) const {
    for (qsizetype position = headerSize; position < m_bytes.size(); position += entrySize) {
        if (qFromLittleEndian<quint16>(m_bytes.constData() + position) == static_cast<quint16>(entry))
            return position;
    }
    return -1;
}

}  // namespace vellmora
