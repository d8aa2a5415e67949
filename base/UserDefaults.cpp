#include "base/UserDefaults.h"

#include "base/Error.h"
#include "base/Files.h"

#include <algorithm>

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>

namespace vellmora {

static QJsonObject readObject(const QString& file) {
    try {
        return QJsonDocument::fromJson(files::read(file)).object();
    } catch (const Error&) {
        return {};
    }
}

UserDefaults::UserDefaults(const QString& file) : m_file(file), m_values(readObject(file)) {}

std::optional<QString> UserDefaults::string(const QString& key) const {
    const QJsonValue value = m_values.value(key);
    return value.isString() ? std::optional(value.toString()) : std::nullopt;
}

std::optional<QStringList> UserDefaults::stringList(const QString& key) const {
    const QJsonValue value = m_values.value(key);
    const QJsonArray elements = value.toArray();
    const bool areStrings = std::all_of(elements.begin(), elements.end(),
                                        [](const QJsonValue& element) { return element.isString(); });
    if (!value.isArray() || !areStrings)
        return std::nullopt;
    return value.toVariant().toStringList();
}

void UserDefaults::setString(const QString& key, const QString& value) {
    set(key, value);
}

void UserDefaults::setStringList(const QString& key, const QStringList& value) {
    set(key, QJsonArray::fromStringList(value));
}

void UserDefaults::remove(const QString& key) {
    set(key, QJsonValue::Undefined);
}

void UserDefaults::set(const QString& key, const QJsonValue& value) {
    m_values = readObject(m_file);
    // Not written for nothing: bringing it onto the disk takes longer than drawing the window.
    if (m_unsaved.isEmpty() && m_values.value(key) == value)
        return;
    m_unsaved.insert(key, value);
    for (auto it = m_unsaved.cbegin(); it != m_unsaved.cend(); ++it)
        m_values.insert(it.key(), it.value());  // an undefined value removes the key
    store();
}

void UserDefaults::store() {
    try {
        files::createDirectory(QFileInfo(m_file).path());
        files::writeAtomically(m_file, QJsonDocument(m_values).toJson());
        m_unsaved.clear();
    } catch (const Error&) {  // NOLINT(bugprone-empty-catch): tried again with the next change
    }
}

}  // namespace vellmora
