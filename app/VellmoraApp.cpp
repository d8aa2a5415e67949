#include "app/VellmoraApp.h"

#include "editor/StampViewAccessible.h"
#include "ui/PresetItemAccessible.h"

#include <QLocale>

// The toolkit's macro must be called outside of any namespace.
static void initializeTranslationResources() {
    Q_INIT_RESOURCE(vellmora_translations);
}

namespace vellmora {

VellmoraApp::VellmoraApp(int& argc, char** argv) : m_application(argc, argv) {
    QApplication::setApplicationName(QStringLiteral("vellmora"));
    QApplication::setApplicationDisplayName(QStringLiteral("Vellmora"));
    QGuiApplication::setDesktopFileName(QStringLiteral("vellmora"));
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    installPresetItemAccessibility();
    installStampViewAccessibility();
    initializeTranslationResources();
    if (m_toolkitTexts.load(QStringLiteral(":/translations/qtbase_de.qm")))
        QCoreApplication::installTranslator(&m_toolkitTexts);
}

}  // namespace vellmora
