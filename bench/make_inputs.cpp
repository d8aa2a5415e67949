// Writes the documents and pictures that are measured with: make_inputs FOLDER [pictures|large]
//
// "pictures" asks for the pictures alone, "large" for the one document of 1.3 GB in place of all the others.
// What they show comes from a random generator with a fixed seed, so each run measures the same.

#include "PdfFile.h"
#include "base/SystemFonts.h"

#include <random>
#include <string>

#include <QBuffer>
#include <QFile>
#include <QGuiApplication>
#include <QPageSize>
#include <QPainter>

#include <QPdfWriter>

using namespace vellmora;

namespace {

constexpr int scanCount = 300;
constexpr int manyScans = 10 * scanCount;
constexpr QSize scanSize(1240, 1754);  // A4 at 150 dots an inch
constexpr qsizetype scanBytes = 433'000;
constexpr int resolution = 72;

QString words(std::mt19937& random, int count) {
    QString text;
    for (int i = 0; i < count; ++i) {
        const auto length = 3 + random() % 9;
        for (auto letter = 0UL; letter < length; ++letter)
            text += QLatin1Char(static_cast<char>('a' + random() % 26));
        text += QLatin1Char(' ');
    }
    return text;
}

void drawLetter(QPainter& painter, const SystemFonts& fonts, const QRectF& page, std::mt19937& random) {
    painter.setPen(Qt::black);
    painter.setFont(fonts.font(page.width() / 50, QFont::Normal));
    const double margin = page.width() / 10;
    painter.drawText(page.adjusted(margin, margin, -margin, -margin), Qt::AlignLeft | Qt::TextWordWrap,
                     words(random, 400));
}

/// A scanned letter: text on grainy paper, as a JPEG of about `scanBytes`.
QByteArray makeScan(const SystemFonts& fonts, std::mt19937& random) {
    QImage image(scanSize, QImage::Format_RGB888);
    for (int y = 0; y < image.height(); ++y) {
        uchar* sample = image.scanLine(y);
        for (int x = 0; x < image.width(); ++x, sample += 3)
            sample[0] = sample[1] = sample[2] = static_cast<uchar>(243 + random() % 7);
    }
    QPainter painter(&image);
    drawLetter(painter, fonts, QRectF(image.rect()), random);
    painter.end();
    QByteArray jpeg;
    QBuffer buffer(&jpeg);
    image.save(&buffer, "jpeg", 78);
    // Filled up: pages of one size make a document of a known one.
    if (jpeg.size() < scanBytes)
        jpeg.append(scanBytes - jpeg.size(), '\0');
    return jpeg;
}

/// Different ones, of which the first are made as people scan them and the others differ from those in a
/// number behind the picture's end.
class Scans {
public:
    explicit Scans(const SystemFonts& fonts) : m_fonts(fonts) {}

    QByteArray next() {
        const int number = m_number++;
        if (number < scanCount)
            m_made.append(makeScan(m_fonts, m_random));
        const QByteArray& scan = m_made[number % scanCount];
        return number < scanCount ? scan : scan + QByteArray::number(number);
    }

private:
    const SystemFonts& m_fonts;
    std::mt19937 m_random{1};
    QList<QByteArray> m_made;
    int m_number = 0;
};

/// One JPEG for each page.
void writeScans(const QString& path, int count, const SystemFonts& fonts) {
    Scans scans(fonts);
    PdfFile file(path);
    QByteArray kids;
    for (int i = 0; i < count; ++i)
        kids += QByteArray::number(3 + 3 * i) + " 0 R ";
    file.add("<< /Type /Catalog /Pages 2 0 R >>");
    file.add("<< /Type /Pages /Count " + QByteArray::number(count) + " /Kids [ " + kids + "] >>");
    const QByteArray picture =
        "/Type /XObject /Subtype /Image /ColorSpace /DeviceRGB /BitsPerComponent 8 "
        "/Filter /DCTDecode /Width " +
        QByteArray::number(scanSize.width()) + " /Height " + QByteArray::number(scanSize.height());
    for (int i = 0; i < count; ++i) {
        const QByteArray content = QByteArray::number(4 + 3 * i);
        const QByteArray image = QByteArray::number(5 + 3 * i);
        file.add("<< /Type /Page /Parent 2 0 R /MediaBox [0 0 595 842] /Contents " + content +
                 " 0 R /Resources << /XObject << /Im " + image + " 0 R >> >> >>");
        file.addStream({}, "q 595 0 0 842 0 0 cm /Im Do Q");
        file.addStream(picture, scans.next());
    }
    file.finish();
}

void writeText(const QString& path, int pageCount, const SystemFonts& fonts) {
    std::mt19937 random(2);
    QPdfWriter writer(path);
    writer.setPageSize(QPageSize(QPageSize::A4));
    writer.setPageMargins({});
    writer.setResolution(resolution);
    QPainter painter(&writer);
    for (int i = 0; i < pageCount; ++i) {
        if (i > 0)
            writer.newPage();
        drawLetter(painter, fonts, QRectF(0, 0, writer.width(), writer.height()), random);
    }
}

/// A stamp with soft edges and a grainy, half transparent ground.
QImage makeStamp(QSize size) {
    std::mt19937 random(3);
    QImage image(size, QImage::Format_ARGB32);
    for (int y = 0; y < image.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));  // NOLINT: Qt's own way
        for (int x = 0; x < image.width(); ++x)
            line[x] = qRgba(200, 30, x * 255 / size.width(), 40 + static_cast<int>(random() % 8));
    }
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor(200, 0, 0), size.height() / 12.0));
    painter.drawEllipse(
        QRectF(image.rect())
            .adjusted(0.1 * size.width(), 0.1 * size.height(), -0.1 * size.width(), -0.1 * size.height()));
    return image;
}

/// The stamp alone on a page: what other programs lay over the pages.
void writeOverlay(const QString& path, const QImage& stamp) {
    QPdfWriter writer(path);
    writer.setPageSize(QPageSize(QPageSize::A4));
    writer.setPageMargins({});
    writer.setResolution(resolution);
    QPainter(&writer).drawImage(QRectF(200, 642, 200, 80), stamp);
}

}  // namespace

int main(int argc, char** argv) {
    const QGuiApplication app(argc, argv);
    const QByteArray wanted = argc == 3 ? argv[2] : "";
    if (argc < 2 || argc > 3 || (argc == 3 && wanted != "pictures" && wanted != "large"))
        return 1;
    const QString folder = QString::fromLocal8Bit(argv[1]) + QLatin1Char('/');
    const QImage stamp = makeStamp({1000, 400});
    stamp.save(folder + QStringLiteral("stamp.png"));
    writeOverlay(folder + QStringLiteral("overlay.pdf"), stamp);
    if (wanted == "pictures")
        return 0;
    const SystemFonts fonts = SystemFonts::load();
    if (wanted == "large") {
        writeScans(folder + QStringLiteral("scans3000.pdf"), manyScans, fonts);
        return 0;
    }
    writeScans(folder + QStringLiteral("scans.pdf"), scanCount, fonts);
    writeText(folder + QStringLiteral("text2000.pdf"), 2000, fonts);
    writeText(folder + QStringLiteral("text200.pdf"), 200, fonts);
    writeText(folder + QStringLiteral("small.pdf"), 2, fonts);
    makeStamp({100, 40}).save(folder + QStringLiteral("small.png"));
    makeStamp({6000, 4000}).save(folder + QStringLiteral("large.png"));
    return 0;
}
