#include "base/SystemFonts.h"

#include <array>
#include <optional>

#include <QByteArray>
#include <QFile>
#include <QFontDatabase>
#include <QtEndian>

// Qt's macro must be called outside of any namespace.
static void initializeFontResources() {
    Q_INIT_RESOURCE(vellmora_fonts);
}

namespace vellmora {

namespace {

QByteArray contentOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Where a table of a font file begins; nothing where the file has none of this name (OpenType, "Table
/// directory").
std::optional<qsizetype> tableStart(const QByteArray& font, const char* name) {
    constexpr qsizetype header = 12;
    constexpr qsizetype entry = 16;
    constexpr qsizetype offsetInEntry = 8;
    for (qsizetype at = header; at + entry <= font.size() && at < header + 64 * entry; at += entry) {
        if (font.mid(at, 4) == name)
            return qFromBigEndian<quint32>(font.constData() + at + offsetInEntry);
    }
    return std::nullopt;
}

/// The family's lines end below the accents of capitals, and ask for a gap between them instead. With the gap
/// put on top of the line (OpenType, "OS/2"), no accent is cut off where a text has its line and no more.
QByteArray withRoomForAccents(QByteArray font) {
    constexpr qsizetype typoAscender = 68;
    constexpr qsizetype typoLineGap = 72;
    const std::optional<qsizetype> start = tableStart(font, "OS/2");
    if (!start || *start + typoLineGap + 2 > font.size())
        return font;
    char* table = font.data() + *start;
    const int ascent =
        qFromBigEndian<qint16>(table + typoAscender) + qFromBigEndian<qint16>(table + typoLineGap);
    qToBigEndian(static_cast<qint16>(ascent), table + typoAscender);
    qToBigEndian(qint16{0}, table + typoLineGap);
    return font;
}

}  // namespace

SystemFonts SystemFonts::load() {
    initializeFontResources();
    static constexpr std::array weights{"Regular", "Medium", "Semibold", "Bold", "Black"};
    QString family;
    for (const char* weight : weights) {
        const QString file = QStringLiteral(":/fonts/Lato-%1.ttf").arg(QLatin1String(weight));
        const int id = QFontDatabase::addApplicationFontFromData(withRoomForAccents(contentOf(file)));
        const QStringList families = QFontDatabase::applicationFontFamilies(id);
        if (family.isEmpty() && !families.isEmpty())
            family = families.first();
    }
    return SystemFonts(family);
}

QFont SystemFonts::font(double size, QFont::Weight weight) const {
    QFont font(m_family);
    font.setPixelSize(qRound(size));
    font.setWeight(weight);
    font.setHintingPreference(QFont::PreferNoHinting);
    return font;
}

}  // namespace vellmora
