#include "base/UserDefaults.h"

#include "base/Error.h"
#include "base/FileLock.h"
#include "base/Files.h"

#include <algorithm>

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>

namespace vellmora {

namespace {

constexpr qint64 maxFileSize = 1 << 20;  // in bytes; the program's own settings take less than a thousand

QJsonObject readObject(const QString& file) {
    try {
        return QJsonDocument::fromJson(files::read(file, maxFileSize)).object();
    } catch (const Error&) {
        return {};
    }
}

QString lockOf(const QString& file) {
    const QFileInfo info(file);
    return info.path() + QStringLiteral("/.") + info.fileName() + QStringLiteral(".lock");
}

std::optional<QStringList> stringsOf(const QJsonValue& value) {
    const QJsonArray elements = value.toArray();
    const bool areStrings = std::all_of(elements.begin(), elements.end(),
                                        [](const QJsonValue& element) { return element.isString(); });
    if (!value.isArray() || !areStrings)
        return std::nullopt;
    return value.toVariant().toStringList();
}

}  // namespace

UserDefaults::UserDefaults(const QString& file) : m_file(file), m_values(readObject(file)) {}

std::optional<QString> UserDefaults::string(const QString& key) const {
    const QJsonValue value = m_values.value(key);
    return value.isString() ? std::optional(value.toString()) : std::nullopt;
}

std::optional<QStringList> UserDefaults::stringList(const QString& key) const {
    return stringsOf(m_values.value(key));
}

void UserDefaults::setString(const QString& key, const QString& value) {
    change(key, [&](const QJsonValue&) { return value; });
}

void UserDefaults::remove(const QString& key) {
    change(key, [](const QJsonValue&) { return QJsonValue::Undefined; });
}

void UserDefaults::changeStringList(const QString& key,
                                    const std::function<QStringList(const QStringList&)>& listChange) {
    change(key, [&](const QJsonValue& now) {
        return QJsonArray::fromStringList(listChange(stringsOf(now).value_or(QStringList())));
    });
}

void UserDefaults::reload() {
    m_values = readObject(m_file);
    for (auto it = m_unsaved.cbegin(); it != m_unsaved.cend(); ++it)
        m_values.insert(it.key(), it.value());  // an undefined value removes the key
}

void UserDefaults::change(const QString& key, const Change& change) {
    const auto apply = [&] {
        reload();
        const QJsonValue now = m_values.value(key);
        const QJsonValue next = change(now);
        m_values.insert(key, next);
        return next != now;
    };
    try {
        files::createDirectory(QFileInfo(m_file).path());
        const FileLock lock(lockOf(m_file));
        // Not written for nothing: a start would take longer.
        if (apply() || !m_unsaved.isEmpty())
            files::writeAtomically(m_file, QJsonDocument(m_values).toJson(), Durability::untilPowerLoss);
        m_unsaved.clear();
    } catch (const Error&) {  // tried again with the next change
        apply();
        m_unsaved.insert(key, m_values.value(key));
    }
}

}  // namespace vellmora
