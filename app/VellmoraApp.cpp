#include "app/VellmoraApp.h"

#include "editor/StampViewAccessible.h"
#include "platform/view/PDFViewAccessible.h"
#include "ui/Accessibility.h"

#include <QLocale>

// The toolkit's macro must be called outside of any namespace.
static void initializeTranslationResources() {
    Q_INIT_RESOURCE(vellmora_translations);
}

namespace vellmora {

/// Dates and numbers of the toolkit's own dialogs follow the environment. Only they are set: the character
/// set stays as the user has it.
static int& withGermanFormats(int& argc) {
    const QByteArray all = qgetenv("LC_ALL");
    if (!all.isEmpty()) {
        qputenv("LC_CTYPE", all);
        qunsetenv("LC_ALL");
    }
    for (const char* category : {"LC_TIME", "LC_NUMERIC", "LC_MEASUREMENT"})
        qputenv(category, "de_DE.UTF-8");
    return argc;
}

VellmoraApp::VellmoraApp(int& argc, char** argv) : m_application(withGermanFormats(argc), argv) {
    QApplication::setApplicationName(QStringLiteral("vellmora"));
    QApplication::setApplicationDisplayName(QStringLiteral("Vellmora"));
    QGuiApplication::setDesktopFileName(QStringLiteral("vellmora"));
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    installAccessibility();
    installStampViewAccessibility();
    installPageViewAccessibility();
    initializeTranslationResources();
    if (m_toolkitTexts.load(QStringLiteral(":/translations/qtbase_de.qm")))
        QCoreApplication::installTranslator(&m_toolkitTexts);
}

}  // namespace vellmora
