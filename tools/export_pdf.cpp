// Stamps a PDF with the code that the program saves with, and prints what it took.
//
//   export_pdf IN.pdf OUT.pdf [--png FILE --page N|all --rect X,Y,W,H]... [--repeat K] [--look N]
//
// Page numbers are 1-based, rectangles in page points. With `--look` that page is looked at before saving, as
// in the window, and a line on standard input is waited for. One JSON line for each run; of the export's
// time, `sync_ms` was spent on waiting for the disk. What the new file lacks of the source is told on
// standard error. Exit codes: 0 done, 1 wrong arguments, 2 the PDF could not be opened, 3 the export failed
// (message on standard error).

#include "base/Error.h"
#include "base/Files.h"
#include "export/PDFExporter.h"
#include "pdf/DocumentProcesses.h"
#include "pdf/PagePdf.h"

#include <cstdio>
#include <iostream>
#include <optional>
#include <string>
#include <sys/syscall.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFileInfo>

using namespace vellmora;

namespace {

double milliseconds(const QElapsedTimer& timer) {
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

double syncTime = 0;

struct PlacedPicture {
    QByteArray png;
    std::optional<qsizetype> pageIndex;  // none: all pages
    Rect rect;
};

struct Arguments {
    QString in;
    QString out;
    QList<PlacedPicture> pictures;
    int repeat = 1;
    qsizetype lookedAt = 0;  ///< none
};

std::optional<Rect> parseRect(const QString& text) {
    QList<double> numbers;
    for (const QString& part : text.split(QLatin1Char(','))) {
        bool isNumber = false;
        numbers.append(part.toDouble(&isNumber));
        if (!isNumber)
            return std::nullopt;
    }
    if (numbers.size() != 4)
        return std::nullopt;
    return Rect{numbers[0], numbers[1], numbers[2], numbers[3]};
}

bool applyOption(Arguments& arguments, const QString& option, const QString& value) {
    if (option == QStringLiteral("--png")) {
        arguments.pictures.append({files::read(QFileInfo(value).absoluteFilePath()), std::nullopt, {}});
        return true;
    }
    if (option == QStringLiteral("--repeat")) {
        arguments.repeat = value.toInt();
        return arguments.repeat > 0;
    }
    if (option == QStringLiteral("--look")) {
        arguments.lookedAt = value.toLongLong();
        return arguments.lookedAt > 0;
    }
    if (arguments.pictures.isEmpty())
        return false;
    PlacedPicture& picture = arguments.pictures.last();
    if (option == QStringLiteral("--page")) {
        if (value == QStringLiteral("all"))
            return true;
        picture.pageIndex = value.toLongLong() - 1;
        return *picture.pageIndex >= 0;
    }
    const auto rect = parseRect(value);
    picture.rect = rect.value_or(Rect{});
    return option == QStringLiteral("--rect") && rect;
}

std::optional<Arguments> parseArguments(const QStringList& words) {
    if (words.size() < 3 || words.size() % 2 == 0)
        return std::nullopt;
    Arguments arguments{words[1], words[2], {}, 1};
    for (qsizetype i = 3; i + 1 < words.size(); i += 2) {
        if (!applyOption(arguments, words[i], words[i + 1]))
            return std::nullopt;
    }
    return arguments;
}

StampsByPage placeStamps(const Arguments& arguments, qsizetype pageCount) {
    StampsByPage stamps;
    for (const PlacedPicture& picture : arguments.pictures) {
        StampItem item;
        item.imageData = picture.png;
        item.rect = picture.rect;
        const qsizetype first = picture.pageIndex.value_or(0);
        const qsizetype last = picture.pageIndex.value_or(pageCount - 1);
        for (item.pageIndex = first; item.pageIndex <= last; ++item.pageIndex) {
            item.id = QUuid::createUuid();
            stamps[item.pageIndex].append(item);
        }
    }
    return stamps;
}

std::shared_ptr<const PDFDocument> open(const QUrl& url, DocumentProcesses& processes) {
    try {
        return PDFDocument::open(url, processes);
    } catch (const Error& error) {
        std::fprintf(stderr, "PDF konnte nicht geladen werden. %s\n", qPrintable(error.reason()));
        return nullptr;
    }
}

int run(const Arguments& arguments) {
    const QUrl in = QUrl::fromLocalFile(QFileInfo(arguments.in).absoluteFilePath());
    const QUrl out = QUrl::fromLocalFile(QFileInfo(arguments.out).absoluteFilePath());
    // The tools lie one folder below the program.
    DocumentProcesses processes(QCoreApplication::applicationDirPath() +
                                QStringLiteral("/../libexec/vellmora/vellmora-document"));
    processes.prepare();
    for (int i = 0; i < arguments.repeat; ++i) {
        QElapsedTimer timer;
        timer.start();
        const auto document = open(in, processes);
        if (!document)
            return 2;
        const double openTime = milliseconds(timer);
        const StampsByPage stamps = placeStamps(arguments, document->pageCount());
        if (arguments.lookedAt > 0) {
            makePagePdf(*document, arguments.lookedAt - 1);
            std::string line;
            std::getline(std::cin, line);
        }
        syncTime = 0;
        timer.restart();
        const QString missing = PDFExporter::save(*document, stamps, out);
        const double exportTime = milliseconds(timer);
        std::printf(R"({"open_ms": %.2f, "export_ms": %.2f, "sync_ms": %.2f, "pages": %lld})"
                    "\n",
                    openTime, exportTime, syncTime, static_cast<long long>(document->pageCount()));
        if (!missing.isEmpty())
            std::fprintf(stderr, "%s\n", qPrintable(missing));
        std::fflush(stdout);  // whoever waits for the file need not wait for the end of the process
    }
    return 0;
}

}  // namespace

/// Stands before the C library's own, to tell how long the program waits for the disk.
extern "C" int fsync(int descriptor) {
    QElapsedTimer timer;
    timer.start();
    const long result = ::syscall(SYS_fsync, descriptor);
    syncTime += milliseconds(timer);
    return static_cast<int>(result);
}

int main(int argc, char** argv) {
    const QCoreApplication app(argc, argv);
    files::makeFileSizeLimitAnError();
    try {
        const auto arguments = parseArguments(QCoreApplication::arguments());
        if (!arguments) {
            std::fputs(
                "export_pdf IN.pdf OUT.pdf [--png FILE --page N|all --rect X,Y,W,H]... [--repeat K] [--look "
                "N]\n",
                stderr);
            return 1;
        }
        return run(*arguments);
    } catch (const Error& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 3;
    }
}
