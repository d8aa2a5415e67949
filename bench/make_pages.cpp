// Writes documents of very many pages to measure with: make_pages FOLDER
//
// Letters as a mail merge makes them: every page has ten objects of its own, and each document a balanced
// page tree and a plain cross-reference table. Nothing in them is random.

#include "PdfFile.h"

#include <algorithm>

#include <QByteArray>
#include <QFile>
#include <QList>

namespace {

constexpr int objectsOfPage = 10;
constexpr int kidsOfNode = 50;

QByteArray reference(int number) {
    return QByteArray::number(number) + " 0 R";
}

QByteArray letter(int page) {
    return "q /G gs 0 0 1 rg 50 780 495 2 re f Q\nq 40 0 0 40 505 790 cm /I Do Q\n/F Do\n"
           "BT /T 11 Tf 14 TL 50 740 Td (Rechnung " +
           QByteArray::number(page + 1) + ") Tj T* (Kundennummer " + QByteArray::number(70'000 + 7 * page) +
           ") Tj T* (Bitte zahlen Sie " + QByteArray::number(10 + page % 990) + ",00 Euro.) Tj ET\n";
}

/// Nine objects, then the page, which is the tenth.
int addPage(PdfFile& file, int index, int parent) {
    constexpr int lengthBefore = 4;  // of Qt's own, in front of a zlib stream
    const int content = file.addStream("/Filter /FlateDecode", qCompress(letter(index)).mid(lengthBefore));
    const int descriptor = file.add(
        "<< /Type /FontDescriptor /FontName /Helvetica /Flags 32 /ItalicAngle 0 /Ascent 718 "
        "/Descent -207 /CapHeight 718 /StemV 88 /FontBBox [-166 -225 1000 931] >>");
    const int font = file.add(
        "<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica /Encoding "
        "/WinAnsiEncoding /FontDescriptor " +
        reference(descriptor) + " >>");
    const int state = file.add("<< /Type /ExtGState /ca 0.5 /CA 0.5 >>");
    const int picture = file.addStream(
        "/Type /XObject /Subtype /Image /ColorSpace /DeviceGray "
        "/BitsPerComponent 8 /Width 4 /Height 4",
        QByteArray(16, static_cast<char>('0' + index % 75)));
    const int form =
        file.addStream("/Type /XObject /Subtype /Form /BBox [0 0 595 842]", "0.9 g 50 60 495 1 re f 0 g");
    const int resources =
        file.add("<< /Font << /T " + reference(font) + " >> /ExtGState << /G " + reference(state) +
                 " >> /XObject << /I " + reference(picture) + " /F " + reference(form) + " >> >>");
    const int action =
        file.add("<< /S /URI /URI (https://www.example.org/" + QByteArray::number(index) + ") >>");
    const int link = file.add("<< /Type /Annot /Subtype /Link /Rect [50 40 200 60] /Border [0 0 0] /A " +
                              reference(action) + " >>");
    return file.add("<< /Type /Page /Parent " + reference(parent) + " /MediaBox [0 0 595 842] /Resources " +
                    reference(resources) + " /Contents " + reference(content) + " /Annots [ " +
                    reference(link) + " ] >>");
}

struct Node {
    int number;
    int pageCount;
};

/// Adds the nodes above these, whose numbers are known before: each comes with those below it.
int nodeCountAbove(int count) {
    int nodes = 0;
    do {
        count = (count + kidsOfNode - 1) / kidsOfNode;
        nodes += count;
    } while (count > 1);
    return nodes;
}

void writeDocument(const QString& path, int pageCount) {
    PdfFile file(path);
    // The nodes follow the pages, level by level; the root is the last of them.
    int nextNode = file.nextNumber() + pageCount * objectsOfPage;
    QList<Node> level;
    for (int i = 0; i < pageCount; ++i)
        level.append({addPage(file, i, nextNode + i / kidsOfNode), 1});
    const int root = nextNode + nodeCountAbove(pageCount) - 1;
    while (level.size() > 1 || level.first().number != root) {
        QList<Node> above;
        const auto nodes = static_cast<int>((level.size() + kidsOfNode - 1) / kidsOfNode);
        nextNode += nodes;
        for (qsizetype first = 0; first < level.size(); first += kidsOfNode) {
            QByteArray kids;
            int count = 0;
            for (qsizetype i = first; i < std::min<qsizetype>(first + kidsOfNode, level.size()); ++i) {
                kids += reference(level[i].number) + ' ';
                count += level[i].pageCount;
            }
            const QByteArray parent =
                nodes == 1
                    ? QByteArray()
                    : "/Parent " + reference(nextNode + static_cast<int>(above.size()) / kidsOfNode) + ' ';
            above.append({file.add("<< /Type /Pages " + parent + "/Count " + QByteArray::number(count) +
                                   " /Kids [ " + kids + "] >>"),
                          count});
        }
        level = above;
    }
    file.finish(file.add("<< /Type /Catalog /Pages " + reference(root) + " >>"));
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2)
        return 1;
    const QString folder = QString::fromLocal8Bit(argv[1]) + QLatin1Char('/');
    for (const int pageCount : {100'000, 50'000})
        writeDocument(folder + QStringLiteral("pages%1.pdf").arg(pageCount), pageCount);
    return 0;
}
