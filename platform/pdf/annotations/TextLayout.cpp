#include "platform/pdf/annotations/TextLayout.h"

#include "platform/pdf/drawing/ContentText.h"

#include <algorithm>
#include <cmath>

#include <QStringList>

namespace vellmora {

namespace {

constexpr double lineSpacing = 1.15;  // in font sizes
constexpr double ascent = 0.8;        // of the first line, in font sizes
constexpr double xHeightMiddle = 0.36;
constexpr double smallestSize = 4;
constexpr double largestMultilineSize = 12;

std::string literal(const std::string& bytes) {
    return QPDFObjectHandle::newString(bytes).unparse();
}

/// Lines of encoded text that are no wider than `width` ems, where a single word is not wider.
std::vector<std::string> wrapped(const QString& text, const TextFont& font, double width) {
    std::vector<std::string> lines;
    for (const QString& paragraph : text.split(QLatin1Char('\n'))) {
        std::string line;
        for (const QString& word : paragraph.split(QLatin1Char(' '))) {
            const std::string next = font.encoded(word);
            std::string longer = line;
            longer.append(line.empty() ? "" : " ").append(next);
            if (!line.empty() && font.width(longer) > width) {
                lines.push_back(line);
                line = next;
            } else {
                line = longer;
            }
        }
        lines.push_back(line);
    }
    return lines;
}

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

void showAt(FormDrawing& drawing, Point at, const std::string& bytes) {
    drawing.add({1, 0, 0, 1, at.x, at.y}, "Tm");
    drawing.add(literal(bytes) + " Tj");
}

void drawMultiline(FormDrawing& drawing, const TextBlock& block, const TextFont& font, double size) {
    double y = block.box.maxY() - ascent * size;
    for (const std::string& line : wrapped(block.text, font, block.box.width / size)) {
        showAt(drawing, {startOf(block, font.width(line) * size), y}, line);
        y -= lineSpacing * size;
    }
}

void drawComb(FormDrawing& drawing, const TextBlock& block, const TextFont& font, double size) {
    const std::string bytes = font.encoded(block.text);
    const double cell = block.box.width / block.combCells;
    const int count = std::min(static_cast<int>(bytes.size()), block.combCells);
    const int empty = block.combCells - count;
    const int first = block.alignment == 2 ? empty : block.alignment == 1 ? empty / 2 : 0;
    for (int i = 0; i < count; ++i) {
        const std::string character(1, bytes[static_cast<size_t>(i)]);
        const double x = block.box.x + (first + i + 0.5) * cell - font.width(character) * size / 2;
        showAt(drawing, {x, block.box.midY() - xHeightMiddle * size}, character);
    }
}

double fittingSize(const TextBlock& block, const TextFont& font) {
    if (block.isMultiline) {
        double size = largestMultilineSize;
        while (size > smallestSize &&
               static_cast<double>(wrapped(block.text, font, block.box.width / size).size()) * lineSpacing *
                       size >
                   block.box.height)
            size -= 0.5;
        return size;
    }
    const double byHeight = block.box.height * 0.75;
    const double ems = block.combCells > 0 ? 0 : font.width(font.encoded(block.text));
    const double size = ems > 0 ? std::min(byHeight, block.box.width / ems) : byHeight;
    return std::max(smallestSize, size);
}

}  // namespace

void drawText(FormDrawing& drawing, const TextBlock& block, const TextFont& font, const std::string& fontName,
              const TextStyle& style) {
    if (block.text.isEmpty() || block.box.isEmpty())
        return;
    const double size = style.fontSize > 0 ? style.fontSize : fittingSize(block, font);
    drawing.add("q");
    drawing.rectangle(block.box);
    drawing.add("W n BT");
    drawing.add(style.color.empty() ? "0 g" : style.color);
    drawing.add(fontName + ' ' + pdfNumber(size) + " Tf");
    if (block.combCells > 0) {
        drawComb(drawing, block, font, size);
    } else if (block.isMultiline) {
        drawMultiline(drawing, block, font, size);
    } else {
        const std::string bytes = font.encoded(block.text);
        showAt(drawing, {startOf(block, font.width(bytes) * size), block.box.midY() - xHeightMiddle * size},
               bytes);
    }
    drawing.add("ET Q");
}

}  // namespace vellmora
