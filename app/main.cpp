#include "app/ContentWindow.h"
#include "app/Handbook.h"
#include "app/VellmoraApp.h"
#include "desktop/DialogFilePanels.h"
#include "pdf/DocumentProcesses.h"
#include "preview/ProcessRenderer.h"
#include "ui/FirstPaint.h"
#include "ui/KeptThumbnails.h"

#include <cstdio>

#include <QScreen>

using namespace vellmora;

/// Without a window. The exit code of the program.
static int showHandbook() {
    const QString failure = handbook::show(handbook::installedFile());
    if (failure.isEmpty())
        return EXIT_SUCCESS;
    std::fprintf(stderr, "vellmora: %s\n", failure.toLocal8Bit().constData());
    return EXIT_FAILURE;
}

int main(int argc, char** argv) {
    VellmoraApp app(argc, argv);
    const auto [document, isForHandbook] = app.request();
    if (isForHandbook)
        return showHandbook();
    DocumentProcesses processes(DocumentProcesses::installedProgram());
    if (document)
        processes.prepare();
    const SystemFonts fonts = SystemFonts::load();
    const Folders folders = Folders::ofUser();
    DialogFilePanels panels;
    ProcessRenderer renderer(ProcessRenderer::installedProgram());

    auto library =
        std::make_unique<StampLibrary>(StampLibrary::Environment{folders, systemClock(), panels, fonts});
    auto content = std::make_unique<ContentView>(std::move(library), panels, processes);
    const QScreen& screen = *QGuiApplication::primaryScreen();
    const Theme theme(fonts, Theme::textScaleFor(QGuiApplication::font(), screen.logicalDotsPerInchY(),
                                                 screen.availableSize().width()));
    ContentWindow window(std::move(content), renderer, theme);
    handbook::showOnHelpKey(window, handbook::installedFile());
    window.window().fitInto(window.window().screen()->availableSize());
    KeptThumbnails thumbnails(window.window().sidebar().thumbnails(), folders.thumbnailsFile);
    QObject::connect(&window.content().stampLibrary(), &StampLibrary::presetRemoved, &window,
                     [&] { thumbnails.forget(); });
    const FirstPaint firstPaint(window.window());
    QObject::connect(&firstPaint, &FirstPaint::completed, &window, [&] { thumbnails.keep(); });
    const auto prepareForDocument = [&] {
        renderer.prepare();
        processes.prepare();
    };
    QObject::connect(&window.content(), &ContentView::documentExpected, prepareForDocument);
    if (!document)
        QObject::connect(&firstPaint, &FirstPaint::completed, prepareForDocument);
    QObject::connect(&firstPaint, &FirstPaint::completed, &window.content().stampLibrary(),
                     &StampLibrary::redrawDueBuiltins);
    window.window().show();
    if (document) {
        renderer.prepare();
        // Inside of the event loop, which may end while the document is loaded.
        QMetaObject::invokeMethod(
            &window, [&window, url = *document] { window.content().loadPDF(url); }, Qt::QueuedConnection);
    }
    return app.run();
}
