// Writes what the view shows of a page, rendered by the renderer process as the program does it.
//
//   show_page IN.pdf PAGE WIDTH OUT.png
//
// PAGE is 1-based, WIDTH in pixels. Prints one JSON line. Exit codes: 0 done, 1 wrong arguments, 2 the PDF
// or the page could not be opened, 4 the page was not rendered (crash, limit or time).

#include "base/Error.h"
#include "pdf/DocumentProcesses.h"
#include "pdf/PagePdf.h"
#include "preview/ProcessRenderer.h"

#include <cmath>
#include <cstdio>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFileInfo>

using namespace vellmora;

namespace {

QImage renderAndWait(PageRenderer& renderer, const PageRenderRequest& request) {
    QEventLoop loop;
    QImage answer;
    renderer.render(request, [&](const QImage& image) {
        answer = image;
        loop.quit();
    });
    loop.exec();
    return answer;
}

double milliseconds(const QElapsedTimer& timer) {
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

std::shared_ptr<const PDFDocument> open(const QString& path, DocumentProcesses& processes) {
    try {
        return PDFDocument::open(QUrl::fromLocalFile(QFileInfo(path).absoluteFilePath()), processes);
    } catch (const Error&) {
        return nullptr;
    }
}

}  // namespace

int main(int argc, char** argv) {
    const QCoreApplication app(argc, argv);
    const QStringList words = QCoreApplication::arguments();
    if (words.size() != 5 || words[3].toInt() <= 0) {
        std::fputs("show_page IN.pdf PAGE WIDTH OUT.png\n", stderr);
        return 1;
    }
    // The tools lie one folder below the program.
    ProcessRenderer renderer(QCoreApplication::applicationDirPath() +
                             QStringLiteral("/../libexec/vellmora/vellmora-render"));
    DocumentProcesses processes(QCoreApplication::applicationDirPath() +
                                QStringLiteral("/../libexec/vellmora/vellmora-document"));
    const auto document = open(words[1], processes);
    const qsizetype index = words[2].toLongLong() - 1;
    const auto page = document ? document->page(index) : std::nullopt;
    if (!page)
        return 2;
    QElapsedTimer timer;
    timer.start();
    const Rect box = page->bounds(DisplayBox::cropBox);
    const int width = words[3].toInt();
    const int height = qMax(1, static_cast<int>(std::lround(width * box.height / box.width)));
    const auto request = PageRenderRequest::whole(makePagePdf(*document, index), QSize(width, height));
    const QImage image = renderAndWait(renderer, request);
    const double first = milliseconds(timer);
    if (image.isNull() || !image.save(words[4]))
        return 4;
    timer.restart();
    renderAndWait(renderer, request);
    std::printf(R"({"first_ms": %.2f, "again_ms": %.2f})"
                "\n",
                first, milliseconds(timer));
    return 0;
}
