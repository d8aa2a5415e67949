#include "app/VellmoraApp.h"

#include "editor/StampViewAccessible.h"
#include "platform/files/Files.h"
#include "platform/fonts/FontConfiguration.h"
#include "platform/view/PDFViewAccessible.h"
#include "ui/Accessibility.h"

#include <clocale>

#include <QCommandLineParser>
#include <QFileInfo>
#include <QIcon>
#include <QLocale>

// The toolkit's macro must be called outside of any namespace.
static void initializeResources() {
    Q_INIT_RESOURCE(vellmora_translations);
    Q_INIT_RESOURCE(vellmora_icons);
}

namespace vellmora {

/// Dates and numbers of the toolkit's own dialogs follow the environment. Only they are set: the character
/// set stays as the user has it.
static void setGermanFormats() {
    const QByteArray all = qgetenv("LC_ALL");
    if (!all.isEmpty()) {
        qputenv("LC_CTYPE", all);
        qunsetenv("LC_ALL");
    }
    for (const char* category : {"LC_TIME", "LC_NUMERIC", "LC_MEASUREMENT"})
        qputenv(category, "de_DE.UTF-8");
}

/// What must be done, or begin, before the toolkit connects to the display.
static std::future<void> prepare() {
    files::makeFileSizeLimitAnError();
    setGermanFormats();
    return readFontConfiguration();
}

/// Small ones, for window managers that do not look into the installed icons. The format is named, since to
/// detect it the toolkit would load all of its decoders.
static QIcon programIcon() {
    QIcon icon;
    for (const int size : {16, 48})
        icon.addPixmap(QPixmap(QStringLiteral(":/icons/vellmora-%1.png").arg(size), "PNG"));
    return icon;
}

VellmoraApp::VellmoraApp(int& argc, char** argv) : m_fontConfiguration(prepare()), m_application(argc, argv) {
    // Libraries read and write numbers of files with it; the toolkit's dialogs do not ask for it.
    std::setlocale(LC_NUMERIC, "C");
    QApplication::setApplicationName(QStringLiteral("vellmora"));
    QApplication::setApplicationVersion(QStringLiteral(VELLMORA_VERSION));
    QApplication::setApplicationDisplayName(QStringLiteral("Vellmora"));
    QGuiApplication::setDesktopFileName(QStringLiteral("vellmora"));
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    installAccessibility();
    installStampViewAccessibility();
    installPageViewAccessibility();
    initializeResources();
    QGuiApplication::setWindowIcon(programIcon());
    if (m_toolkitTexts.load(QStringLiteral(":/translations/qtbase_de.qm")))
        QCoreApplication::installTranslator(&m_toolkitTexts);
    m_fontConfiguration.wait();
}

std::optional<QUrl> VellmoraApp::documentToOpen() const {
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Stempelt PDF-Dokumente."));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addPositionalArgument(QStringLiteral("datei"), QStringLiteral("PDF, die geöffnet wird."),
                                 QStringLiteral("[Datei]"));
    parser.process(m_application);
    const QStringList files = parser.positionalArguments();
    if (files.size() > 1)
        parser.showHelp(EXIT_FAILURE);
    if (files.isEmpty())
        return std::nullopt;
    return QUrl::fromLocalFile(QFileInfo(files.first()).absoluteFilePath());
}

}  // namespace vellmora
