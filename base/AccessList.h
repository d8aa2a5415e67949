#pragma once

#include <optional>

#include <QByteArray>

namespace vellmora {

/// A POSIX access list (acl(5)) in the form in which the system keeps it in an extended attribute.
class AccessList {
public:
    static constexpr const char* attributeName = "system.posix_acl_access";
    /// Of a folder: the list that new files in it get.
    static constexpr const char* defaultAttributeName = "system.posix_acl_default";

    /// The entries of which each list has one at most; named users and groups have others.
    enum class Entry : quint16 { owner = 0x01, owningGroup = 0x04, mask = 0x10, others = 0x20 };

    /// Nothing where these bytes are no such list.
    static std::optional<AccessList> parse(const QByteArray& bytes);

    const QByteArray& bytes() const { return m_bytes; }
    /// Permissions (0 to 7) of the entry; nothing where the list has none.
    std::optional<unsigned> permissions(Entry entry) const;
    /// An entry that is not there is not made.
    void setPermissions(Entry entry, unsigned permissions);

private:
    explicit AccessList(QByteArray bytes) : m_bytes(std::move(bytes)) {}
    qsizetype positionOf(Entry entry) const;

    QByteArray m_bytes;
};

}  // namespace vellmora
