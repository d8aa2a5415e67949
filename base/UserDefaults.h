#pragma once

#include <optional>

#include <QHash>
#include <QJsonObject>
#include <QString>
#include <QStringList>

namespace vellmora {

/// The user's settings: a key-value store in one JSON file, which keeps a string apart from a list of one
/// string.
///
/// Reads and writes are synchronous. A file that cannot be read counts as empty, one that cannot be written
/// keeps the values for the life of the object; neither is an error. Nothing waits for another program: of
/// what two write at once the later one holds, for each key.
class UserDefaults {
public:
    explicit UserDefaults(const QString& file);

    /// Nothing where the key is absent or its value is no string.
    std::optional<QString> string(const QString& key) const;
    /// Nothing where the key is absent or its value is not an array whose every element is a string.
    std::optional<QStringList> stringList(const QString& key) const;

    void setString(const QString& key, const QString& value);
    void setStringList(const QString& key, const QStringList& value);
    void remove(const QString& key);

private:
    void set(const QString& key, const QJsonValue& value);
    void store();

    QString m_file;
    QJsonObject m_values;
    QHash<QString, QJsonValue> m_unsaved;  ///< undefined where a key is to be removed
};

}  // namespace vellmora
