#include "base/SystemFonts.h"

#include <array>
#include <cstdint>
#include <optional>
#include <sys/mman.h>
#include <unistd.h>

#include <QByteArray>
#include <QFontDatabase>
#include <QResource>
#include <QtEndian>

// Qt's macro must be called outside of any namespace.
static void initializeFontResources() {
    Q_INIT_RESOURCE(vellmora_fonts);
}

namespace vellmora {

namespace {

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

/// Makes bytes of the program's own file writable in memory. Of what is written to, the system makes a copy
/// page by page; all else stays the file's. Null where that cannot be.
char* writable(const char* bytes, size_t length) {
    const auto pageSize = static_cast<std::uintptr_t>(::sysconf(_SC_PAGESIZE));
    const size_t before = reinterpret_cast<std::uintptr_t>(bytes) % pageSize;
    char* first = const_cast<char*>(bytes);
    return ::mprotect(first - before, before + length, PROT_READ | PROT_WRITE) == 0 ? first : nullptr;
}

/// The family's lines end below the accents of capitals, and ask for a gap between them instead. With the gap
/// put on top of the line (OpenType, "OS/2"), no accent is cut off where a text has its line and no more.
/// Written where the font lies in memory: a copy of all five would take three megabytes.
void makeRoomForAccents(const QByteArray& font) {
    constexpr qsizetype typoAscender = 68;
    constexpr qsizetype typoLineGap = 72;
    const std::optional<qsizetype> start = tableStart(font, "OS/2");
    if (!start || *start + typoLineGap + 2 > font.size())
        return;
    char* table = writable(font.constData() + *start, typoLineGap + 2);
    if (!table)
        return;
    const int ascent =
        qFromBigEndian<qint16>(table + typoAscender) + qFromBigEndian<qint16>(table + typoLineGap);
    qToBigEndian(static_cast<qint16>(ascent), table + typoAscender);
    qToBigEndian(qint16{0}, table + typoLineGap);
}

/// The font's bytes in the program's file.
QByteArray embeddedFont(const QString& path) {
    const QResource resource(path);
    return QByteArray::fromRawData(reinterpret_cast<const char*>(resource.data()),
                                   static_cast<qsizetype>(resource.size()));
}

}  // namespace

SystemFonts SystemFonts::load() {
    initializeFontResources();
    static constexpr std::array weights{"Regular", "Medium", "Semibold", "Bold", "Black"};
    QString family;
    for (const char* weight : weights) {
        const QString file = QStringLiteral(":/fonts/Lato-%1.ttf").arg(QLatin1String(weight));
        const QByteArray font = embeddedFont(file);
        makeRoomForAccents(font);
        const int id = QFontDatabase::addApplicationFontFromData(font);
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
