#include "platform/defaults/UserDefaults.h"

#include <algorithm>

#include <QIODevice>
#include <QJsonDocument>
#include <QJsonObject>

namespace vellmora {

namespace {

bool readJson(QIODevice& device, QSettings::SettingsMap& map) {
    const QJsonDocument document = QJsonDocument::fromJson(device.readAll());
    if (!document.isObject())
        return false;
    const QJsonObject object = document.object();
    for (auto it = object.begin(); it != object.end(); ++it)
        map.insert(it.key(), it.value().toVariant());
    return true;
}

bool writeJson(QIODevice& device, const QSettings::SettingsMap& map) {
    QJsonObject object;
    for (auto it = map.begin(); it != map.end(); ++it)
        object.insert(it.key(), QJsonValue::fromVariant(it.value()));
    return device.write(QJsonDocument(object).toJson()) > 0;
}

QSettings::Format jsonFormat() {
    static const QSettings::Format format =
        QSettings::registerFormat(QStringLiteral("json"), readJson, writeJson, Qt::CaseSensitive);
    return format;
}

bool isString(const QVariant& value) {
    return value.typeId() == QMetaType::QString;
}

}  // namespace

UserDefaults::UserDefaults(const QString& file) : m_settings(file, jsonFormat()) {}

std::optional<QString> UserDefaults::string(const QString& key) const {
    const QVariant value = m_settings.value(key);
    return isString(value) ? std::optional(value.toString()) : std::nullopt;
}

std::optional<QStringList> UserDefaults::stringList(const QString& key) const {
    const QVariant value = m_settings.value(key);
    if (value.typeId() == QMetaType::QStringList)
        return value.toStringList();
    if (value.typeId() != QMetaType::QVariantList)
        return std::nullopt;
    const QVariantList elements = value.toList();
    if (!std::all_of(elements.begin(), elements.end(), isString))
        return std::nullopt;
    return value.toStringList();
}

void UserDefaults::setString(const QString& key, const QString& value) {
    m_settings.setValue(key, value);
    m_settings.sync();
}

void UserDefaults::setStringList(const QString& key, const QStringList& value) {
    m_settings.setValue(key, value);
    m_settings.sync();
}

void UserDefaults::remove(const QString& key) {
    m_settings.remove(key);
    m_settings.sync();
}

}  // namespace vellmora
