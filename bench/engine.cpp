// Times of the parts that the program is built on, in milliseconds:
//
//   engine page FILE.pdf WIDTH HEIGHT   the rendering engine draws the first page with that many pixels
//   engine picture FILE                 Qt decodes a picture once
//
// The file is in memory, and a document is open, before the clock starts.

#include <cstdio>

#include <QBuffer>
#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>
#include <QImage>

#include <QPdfDocument>

namespace {

double milliseconds(const QElapsedTimer& timer) {
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

int renderPage(const QByteArray& bytes, QSize size) {
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    QPdfDocument document;
    document.load(&buffer);
    QElapsedTimer timer;
    timer.start();
    const QImage page = document.render(0, size);
    std::printf(R"({"render_ms": %.3f})"
                "\n",
                milliseconds(timer));
    return page.isNull() ? 1 : 0;
}

int decodePicture(const QByteArray& bytes) {
    QElapsedTimer timer;
    timer.start();
    const QImage image = QImage::fromData(bytes);
    std::printf(R"({"decode_ms": %.3f})"
                "\n",
                milliseconds(timer));
    return image.isNull() ? 1 : 0;
}

}  // namespace

int main(int argc, char** argv) {
    const QGuiApplication app(argc, argv);
    const QStringList words = QCoreApplication::arguments();
    QFile file(words.value(2));
    if (!file.open(QIODevice::ReadOnly))
        return 1;
    const QByteArray bytes = file.readAll();
    if (words[1] == QStringLiteral("page") && words.size() == 5)
        return renderPage(bytes, {words[3].toInt(), words[4].toInt()});
    return decodePicture(bytes);
}
