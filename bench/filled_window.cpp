// The program's window with a document that has stamps on it already, to measure a drag in it:
//
//   filled_window DOCUMENT.pdf STAMP.png COUNT ELSEWHERE
//
// COUNT stamps with this picture lie on the first page and ELSEWHERE more on the others. Prints where the
// last one of the first page is on the screen, once it is there.

#include "app/ContentWindow.h"
#include "app/VellmoraApp.h"
#include "base/Files.h"
#include "desktop/DialogFilePanels.h"
#include "editor/InteractiveStampView.h"
#include "pdf/DocumentProcesses.h"
#include "preview/ProcessRenderer.h"

#include <cstdio>

#include <QFileInfo>
#include <QTimer>

using namespace vellmora;

namespace {

constexpr double stampWidth = 140;  // points
constexpr qsizetype columns = 14;
constexpr Rect lastStamp{200, 400, stampWidth, 0};

StampItem makeStamp(const QByteArray& picture, qsizetype page, const Rect& rect) {
    StampItem stamp;
    stamp.pageIndex = page;
    stamp.imageData = picture;
    stamp.aspectRatio = rect.width / rect.height;
    stamp.rect = rect;
    return stamp;
}

StampsByPage makeStamps(const QByteArray& picture, qsizetype onFirst, qsizetype elsewhere, qsizetype pages) {
    const Size size = Image::fromData(picture)->size();
    Rect rect = lastStamp;
    rect.height = rect.width * size.height / size.width;
    StampsByPage stamps;
    for (qsizetype i = 0; i + 1 < onFirst; ++i) {
        const qsizetype column = i % columns;
        const qsizetype row = i / columns;
        const Rect other = rect.translated(double(column) * 20 - 160, double(row) * 20 - 200);
        stamps[0].append(makeStamp(picture, 0, other));
    }
    stamps[0].append(makeStamp(picture, 0, rect));
    for (qsizetype i = 0; i < elsewhere; ++i) {
        const qsizetype page = 1 + i % (pages - 1);
        stamps[page].append(makeStamp(picture, page, rect));
    }
    return stamps;
}

void tellPlace(ContentWindow& window, const QUuid& stampID) {
    const QWidget* editor = window.editor();
    for (const InteractiveStampView* view : editor->findChildren<InteractiveStampView*>()) {
        if (view->stamp().id != stampID)
            continue;
        const QPoint middle = view->mapToGlobal(view->rect().center());
        const QPoint corner = editor->mapToGlobal(QPoint(0, 0));
        std::printf(R"({"stamp": [%d, %d], "editor": [%d, %d, %d, %d]})"
                    "\n",
                    middle.x(), middle.y(), corner.x(), corner.y(), editor->width(), editor->height());
        std::fflush(stdout);
    }
}

}  // namespace

int main(int argc, char** argv) {
    VellmoraApp app(argc, argv);
    const QStringList words = QCoreApplication::arguments();
    if (words.size() != 5)
        return 1;
    const SystemFonts fonts = SystemFonts::load();
    DialogFilePanels panels;
    DocumentProcesses processes(DocumentProcesses::installedProgram());
    processes.prepare();
    ProcessRenderer renderer(ProcessRenderer::installedProgram());
    auto library = std::make_unique<StampLibrary>(
        StampLibrary::Environment{Folders::ofUser(), systemClock(), panels, fonts});
    ContentWindow window(std::make_unique<ContentView>(std::move(library), panels, processes), renderer,
                         Theme(fonts));
    window.window().show();

    ContentView& content = window.content();
    content.loadPDF(QUrl::fromLocalFile(QFileInfo(words[1]).absoluteFilePath()));
    const StampsByPage stamps = makeStamps(files::read(words[2]), words[3].toLongLong(),
                                           words[4].toLongLong(), content.pdfDocument.value()->pageCount());
    content.stampsByPage = stamps;
    const QUuid last = stamps[0].last().id;
    content.selectedStampID = last;
    QTimer::singleShot(std::chrono::seconds(1), &window, [&] { tellPlace(window, last); });
    return app.run();
}
