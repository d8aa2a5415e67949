#include "engine/appearance/TextLayout.h"

#include "engine/appearance/LineBreaks.h"
#include "engine/objects/ContentText.h"

#include <algorithm>

#include <QStringList>
#include <QTextBoundaryFinder>

namespace vellmora {

namespace {

// In font sizes, as editors of forms place text in the appearances that they write.
constexpr double middle = 0.371;  // above the baseline
constexpr double descent = 0.2;
constexpr double smallestSize = 4;
constexpr double largestMultilineSize = 12;

double startOf(const TextBlock& block, double width) {
    const double space = block.box.width - width;
    switch (block.alignment) {
        case 1:
            return block.box.x + space / 2;
        case 2:
            return block.box.x + space;
        default:
            return block.box.x;
    }
}

void showLine(const TextBlock& block, TextWriter& writer, const TextLine& line, double y, double size) {
    const double width = block.alignment == 0 ? 0 : writer.width(line.text) / 1000 * size;
    writer.show(line, {startOf(block, width), y});
}

/// What is read as one character: a letter with its marks.
QStringList lettersOf(const QString& text, int most) {
    QStringList letters;
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    for (qsizetype start = 0; start < text.size() && letters.size() < most;) {
        const qsizetype next = finder.toNextBoundary();
        const qsizetype end = next > start ? next : text.size();
        letters.append(text.mid(start, end - start));
        start = end;
    }
    return letters;
}

void drawComb(const TextBlock& block, TextWriter& writer, double size) {
    QStringList letters = lettersOf(block.text, block.combCells);
    if (block.text.isRightToLeft())
        std::reverse(letters.begin(), letters.end());
    const double cell = block.box.width / block.combCells;
    const int count = static_cast<int>(letters.size());
    const int empty = block.combCells - count;
    const int first = block.alignment == 2 ? empty : block.alignment == 1 ? empty / 2 : 0;
    for (int i = 0; i < count; ++i) {
        const double width = writer.width(letters[i]) / 1000;
        const double x = block.box.x + (first + i + 0.5) * cell - width * size / 2;
        writer.show({letters[i], false}, {x, block.box.midY() - middle * size});
    }
}

double fittingMultilineSize(const TextBlock& block, const LineBreaks& breaks) {
    double size = largestMultilineSize;
    while (size > smallestSize &&
           static_cast<double>(breaks.count(block.box.width / size)) * lineHeight * size > block.box.height)
        size -= 0.5;
    return size;
}

double fittingSize(const TextBlock& block, const TextWriter& writer, double largest) {
    const double ems = block.combCells > 0 ? 0 : writer.width(block.text) / 1000;
    const double size = ems > 0 ? std::min(largest, block.box.width / ems) : largest;
    return std::max(smallestSize, size);
}

double lineSize(const TextBlock& block, const TextWriter& writer, const TextStyle& style) {
    if (style.fontSize <= 0)
        return fittingSize(block, writer, block.box.height * 0.75);
    return writer.isSubstitute() ? std::min(style.fontSize, fittingSize(block, writer, style.fontSize))
                                 : style.fontSize;
}

void drawLines(const TextBlock& block, TextWriter& writer, const LineBreaks& breaks, double size) {
    writer.begin(size);
    const double room = block.box.height - descent * size;
    double y = block.box.maxY() - std::max(ascent * size, std::min(block.firstBaseline * size, room));
    for (const TextLine& line : breaks.lines(block.box.width / size)) {
        if (y + size < block.box.minY())  // below the box
            break;
        showLine(block, writer, line, y, size);
        y -= lineHeight * size;
    }
}

void drawLine(const TextBlock& block, TextWriter& writer, const TextStyle& style) {
    const double size = lineSize(block, writer, style);
    writer.begin(size);
    if (block.combCells > 0) {
        drawComb(block, writer, size);
        return;
    }
    showLine(block, writer, {block.text, block.text.isRightToLeft()}, block.box.midY() - middle * size, size);
}

}  // namespace

void drawText(FormBuilder& drawing, const TextBlock& block, TextWriter& writer, const TextStyle& style) {
    if (block.text.isEmpty() || block.box.isEmpty())
        return;
    drawing.add("q");
    drawing.rectangle(block.box);
    drawing.add("W n BT");
    drawing.add(style.color.empty() ? "0 g" : style.color);
    if (block.isMultiline) {
        const LineBreaks breaks(block.text, writer);
        drawLines(block, writer, breaks,
                  style.fontSize > 0 ? style.fontSize : fittingMultilineSize(block, breaks));
    } else {
        drawLine(block, writer, style);
    }
    drawing.add("ET Q");
}

}  // namespace vellmora
