#include "base/SystemFonts.h"

#include <array>

#include <QDir>
#include <QFontDatabase>

// Qt's macro must be called outside of any namespace.
static void initializeFontResources() {
    Q_INIT_RESOURCE(vellmora_fonts);
}

namespace vellmora {

SystemFonts SystemFonts::load() {
    initializeFontResources();
    static constexpr std::array weights{"Regular", "Medium", "Bold", "Black"};
    QString family;
    for (const char* weight : weights) {
        const QString file = QStringLiteral(":/fonts/Roboto-%1.ttf").arg(QLatin1String(weight));
        const int id = QFontDatabase::addApplicationFont(file);
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
