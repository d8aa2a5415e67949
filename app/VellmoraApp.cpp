#include "app/VellmoraApp.h"

#include "base/Files.h"
#include "editor/StampViewAccessible.h"
#include "preview/PDFViewAccessible.h"
#include "ui/Accessibility.h"

#include <clocale>
#include <malloc.h>

#include <QCommandLineParser>
#include <QFileInfo>
#include <QIcon>
#include <QImageReader>
#include <QLocale>

namespace vellmora {

/// Qt's own dialogs take the formats of dates and numbers from the environment. The character set stays as
/// the user has it. The environment must not change once there are threads.
static void setGermanFormats() {
    const QByteArray all = qgetenv("LC_ALL");
    if (!all.isEmpty()) {
        qputenv("LC_CTYPE", all);
        qunsetenv("LC_ALL");
    }
    for (const char* category : {"LC_TIME", "LC_NUMERIC", "LC_MEASUREMENT"})
        qputenv(category, "de_DE.UTF-8");
}

/// Small icons, for window managers that do not look into the installed ones. Qt takes their format as it is
/// told, since it would load all of its decoders to look for another that knows them.
static QIcon programIcon() {
    QIcon icon;
    for (const int size : {16, 48}) {
        QImageReader reader(QStringLiteral(":/icons/vellmora-%1.png").arg(size), "png");
        reader.setAutoDetectImageFormat(false);
        icon.addPixmap(QPixmap::fromImageReader(&reader));
    }
    return icon;
}

/// Large pieces of memory go back to the system when they are freed. Unless it is told a size, the C library
/// keeps pieces as large as the largest one that was freed so far: each thread those of the pictures it has
/// decoded, scaled or compressed. And it has a heap for each thread, of which most lie still.
static void keepLittleFreeMemory() {
    constexpr int size = 128 << 10;
    ::mallopt(M_MMAP_THRESHOLD, size);
    ::mallopt(M_TRIM_THRESHOLD, size);
    ::mallopt(M_ARENA_MAX, 2);
}

/// What must be done before Qt is started, which starts threads. Hands the argument on, for an initializer.
static int& prepared(int& argc) {
    keepLittleFreeMemory();
    files::makeFileSizeLimitAnError();
    setGermanFormats();
    return argc;
}

VellmoraApp::VellmoraApp(int& argc, char** argv) : m_application(prepared(argc), argv) {
    // Qt has set it from the environment. Libraries read and write the numbers in files with it.
    std::setlocale(LC_NUMERIC, "C");
    QApplication::setApplicationName(QStringLiteral("vellmora"));
    QApplication::setApplicationVersion(QStringLiteral(VELLMORA_VERSION));
    QApplication::setApplicationDisplayName(QStringLiteral("Vellmora"));
    QGuiApplication::setDesktopFileName(QStringLiteral("vellmora"));
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    installAccessibility();
    installStampViewAccessibility();
    installPageViewAccessibility();
    QGuiApplication::setWindowIcon(programIcon());
    if (m_qtTexts.load(QStringLiteral(":/translations/qtbase_de.qm")))
        QCoreApplication::installTranslator(&m_qtTexts);
}

VellmoraApp::Request VellmoraApp::request() const {
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Stempelt PDF-Dokumente."));
    parser.addHelpOption();
    parser.addVersionOption();
    const QCommandLineOption handbook(QStringLiteral("handbuch"), QStringLiteral("Zeigt das Handbuch."));
    parser.addOption(handbook);
    parser.addPositionalArgument(QStringLiteral("datei"), QStringLiteral("PDF, die geöffnet wird."),
                                 QStringLiteral("[Datei]"));
    parser.process(m_application);
    const QStringList files = parser.positionalArguments();
    const bool isForHandbook = parser.isSet(handbook);
    if (files.size() > (isForHandbook ? 0 : 1))
        parser.showHelp(EXIT_FAILURE);
    if (files.isEmpty())
        return {std::nullopt, isForHandbook};
    return {QUrl::fromLocalFile(QFileInfo(files.first()).absoluteFilePath()), isForHandbook};
}

}  // namespace vellmora
