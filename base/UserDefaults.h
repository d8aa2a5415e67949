#pragma once

#include <functional>
#include <optional>

#include <QHash>
#include <QJsonObject>
#include <QString>
#include <QStringList>

namespace vellmora {

/// The user's settings: a key-value store in one JSON file, which keeps a string apart from a list of one
/// string.
///
/// All programs of the user share the file. A change is made to what it holds at that moment, under a lock,
/// so that no other program's is lost. Reads and writes are synchronous, but the disk is not waited for: a
/// loss of power may take the latest changes. A file that cannot be read, or is much larger than settings
/// are, counts as empty; one that cannot be written keeps the values for the life of the object; neither is
/// an error.
class UserDefaults {
public:
    explicit UserDefaults(const QString& file);

    /// Nothing where the key is absent or its value is no string.
    std::optional<QString> string(const QString& key) const;
    /// Nothing where the key is absent or its value is not an array whose every element is a string.
    std::optional<QStringList> stringList(const QString& key) const;

    void setString(const QString& key, const QString& value);
    void remove(const QString& key);
    /// Sets what `change` makes of the list that the file holds now; an absent one is handed in as empty.
    void changeStringList(const QString& key, const std::function<QStringList(const QStringList&)>& change);

    /// Reads what other programs have written. Without that their values are seen with the next change.
    void reload();

private:
    using Change = std::function<QJsonValue(const QJsonValue& now)>;
    void change(const QString& key, const Change& change);

    QString m_file;
    QJsonObject m_values;
    QHash<QString, QJsonValue> m_unsaved;  ///< undefined where a key is to be removed
};

}  // namespace vellmora
