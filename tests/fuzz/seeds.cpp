// Writes what the fuzzers begin with: seeds FOLDER makes FOLDER/library, FOLDER/image and FOLDER/pdf.

#include "library/StampPresetJson.h"
#include "tests/support/TestImages.h"
#include "tests/support/TestPdf.h"

#include <QBuffer>
#include <QColorSpace>
#include <QDir>

using namespace vellmora;
using namespace vellmora::test;

namespace {

class Corpus {
public:
    explicit Corpus(const QString& folder) : m_folder(folder) { QDir().mkpath(folder); }
    void add(const QByteArray& bytes) {
        writeFile(m_folder + QStringLiteral("/seed-%1").arg(++m_count), bytes);
    }

private:
    QString m_folder;
    int m_count = 0;
};

void addLibraries(Corpus corpus) {
    const QDateTime date(QDate(2025, 3, 7), QTime(9, 30), Qt::UTC);
    const StampPreset plain{
        QUuid::createUuid(), QStringLiteral("Kanzlei"), QStringLiteral("a.png"), date, {}, {}};
    const StampPreset builtin{
        QUuid::createUuid(),       QStringLiteral("Geprüft"), QStringLiteral("builtin-a.png"), date, date,
        QStringLiteral("geprueft")};
    corpus.add(encodePresets({}));
    corpus.add(encodePresets({plain}));
    corpus.add(encodePresets({builtin, plain}));
    corpus.add(R"([{"id": "x", "lastUsedAt": null, "fileName": "../a\u0000.png"}])");
}

void addImages(Corpus corpus) {
    const QImage red = plainImage(20, 10, QColor(200, 30, 30, 128));
    corpus.add(pngOf(red));
    for (const auto format : {QImage::Format_Mono, QImage::Format_Indexed8, QImage::Format_Grayscale8,
                              QImage::Format_Grayscale16, QImage::Format_RGB888, QImage::Format_RGBA64})
        corpus.add(pngOf(red.convertToFormat(format)));
    QImage wide = red;
    wide.setColorSpace(QColorSpace(QColorSpace::AdobeRgb));
    wide.setDotsPerMeterX(8031);
    wide.setDotsPerMeterY(4016);
    wide.setText(QStringLiteral("Title"), QStringLiteral("Stempel"));
    corpus.add(pngOf(wide));
    QByteArray jpeg;
    QBuffer buffer(&jpeg);
    red.convertToFormat(QImage::Format_RGB32).save(&buffer, "JPG");
    corpus.add(jpeg);
}

void addDocuments(Corpus corpus) {
    corpus.add(pages(3).bytes());
    corpus.add(PdfBuilder()
                   .page("/Rotate 90 /CropBox [10 10 200 300] /UserUnit 2 /Group << /S /Transparency >>",
                         filledRect("1 0 0", "0 0 50 50"))
                   .bytes());
    corpus.add(
        PdfBuilder()
            .page("/Contents [1000 0 R 1000 0 R] /Resources << /XObject << /F 1001 0 R >> >>"
                  " /Annots [1002 0 R 1003 0 R]")
            .stream("", "q 1 0 0 1 5 5 cm /F Do Q")
            .stream(
                "/Type /XObject /Subtype /Form /BBox [0 0 9 9] /Resources << /XObject << /F 1001 0 R >> >>",
                "/F Do 0 0 9 9 re f")
            .object("<< /Type /Annot /Subtype /Stamp /Rect [9 9 99 99] /F 4 /AP << /N 1001 0 R >> >>")
            .object("<< /Type /Annot /Subtype /Widget /Rect [9 9 99 99] /AS /On"
                    " /AP << /N << /On 1001 0 R /Off 1001 0 R >> >> >>")
            .catalog("/OCProperties << /OCGs [1004 0 R] /D << /OFF [1004 0 R] >> >>")
            .object("<< /Type /OCG /Name (Entwurf) >>")
            .bytes());
    QByteArray withoutTable = pages(2).bytes();
    withoutTable.truncate(withoutTable.indexOf("xref"));
    corpus.add(withoutTable);
    QByteArray loop = pages(1).bytes();
    loop.replace("/Kids [ 3 0 R ]", "/Kids [ 2 0 R 3 0 R (x) 3 0 R 99 0 R ]");
    corpus.add(loop);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2)
        return 1;
    const QString folder = QString::fromLocal8Bit(argv[1]);
    addLibraries(Corpus(folder + QStringLiteral("/library")));
    addImages(Corpus(folder + QStringLiteral("/image")));
    addDocuments(Corpus(folder + QStringLiteral("/pdf")));
    return 0;
}
