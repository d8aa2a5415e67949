#include "base/SystemFonts.h"

#include <array>

#include <QByteArray>
#include <QFontDatabase>
#include <QResource>

// Qt's macro must be called outside of any namespace.
static void initializeFontResources() {
    Q_INIT_RESOURCE(vellmora_fonts);
}

namespace vellmora {

namespace {

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
        const int id = QFontDatabase::addApplicationFontFromData(embeddedFont(file));
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
