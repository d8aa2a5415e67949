#include "library/StampPresetJson.h"

#include "base/Text.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace vellmora {

namespace {

constexpr QLatin1String idKey("id");
constexpr QLatin1String displayNameKey("displayName");
constexpr QLatin1String fileNameKey("fileName");
constexpr QLatin1String createdAtKey("createdAt");
constexpr QLatin1String lastUsedAtKey("lastUsedAt");
constexpr QLatin1String builtinKeyKey("builtinKey");

/// In characters. A file's name, which an entry is called after, has at most 255.
constexpr qsizetype maxNameLength = 1000;

QString shortened(const QString& name) {
    if (name.size() <= maxNameLength)
        return name;
    const bool wouldSplitPair = name[maxNameLength - 1].isHighSurrogate();
    return name.first(maxNameLength - (wouldSplitPair ? 1 : 0));
}

QJsonObject encodePreset(const StampPreset& preset) {
    QJsonObject object{
        {idKey, identifierText(preset.id)},
        {displayNameKey, preset.displayName},
        {fileNameKey, preset.fileName},
        {createdAtKey, internetDateTimeText(preset.createdAt)},
    };
    if (preset.lastUsedAt)
        object.insert(lastUsedAtKey, internetDateTimeText(*preset.lastUsedAt));
    if (preset.builtinKey)
        object.insert(builtinKeyKey, *preset.builtinKey);
    return object;
}

/// Reads the values of one object, and remembers whether any of them was missing or wrong.
class ObjectReader {
public:
    explicit ObjectReader(const QJsonValue& value)
        : m_object(value.toObject()), m_isValid(value.isObject()) {}

    bool isValid() const { return m_isValid; }

    QString string(QLatin1String key) {
        const QJsonValue value = m_object.value(key);
        m_isValid = m_isValid && value.isString();
        return value.toString();
    }
    QUuid identifier(QLatin1String key) { return required(parseIdentifier(string(key))); }
    QDateTime date(QLatin1String key) { return required(parseInternetDateTime(string(key))); }
    bool has(QLatin1String key) const {
        const QJsonValue value = m_object.value(key);
        return !value.isNull() && !value.isUndefined();
    }

private:
    template <typename T>
    T required(const std::optional<T>& value) {
        m_isValid = m_isValid && value.has_value();
        return value.value_or(T());
    }

    QJsonObject m_object;
    bool m_isValid;
};

std::optional<StampPreset> decodePreset(const QJsonValue& value) {
    ObjectReader reader(value);
    StampPreset preset{reader.identifier(idKey),
                       shortened(reader.string(displayNameKey)),
                       reader.string(fileNameKey),
                       reader.date(createdAtKey),
                       std::nullopt,
                       std::nullopt};
    if (reader.has(lastUsedAtKey))
        preset.lastUsedAt = reader.date(lastUsedAtKey);
    if (reader.has(builtinKeyKey))
        preset.builtinKey = reader.string(builtinKeyKey);
    return reader.isValid() ? std::optional(preset) : std::nullopt;
}

}  // namespace

QByteArray encodePresets(const QList<StampPreset>& presets) {
    QJsonArray array;
    for (const StampPreset& preset : presets)
        array.append(encodePreset(preset));
    return QJsonDocument(array).toJson(QJsonDocument::Indented);
}

std::optional<QList<StampPreset>> decodePresets(const QByteArray& json) {
    const QJsonDocument document = QJsonDocument::fromJson(json);
    if (!document.isArray())
        return std::nullopt;
    QList<StampPreset> presets;
    for (const QJsonValue value : document.array()) {
        const std::optional<StampPreset> preset = decodePreset(value);
        if (!preset)
            return std::nullopt;
        presets.append(*preset);
    }
    return presets;
}

}  // namespace vellmora
