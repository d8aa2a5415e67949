#include "engine/objects/PDFValues.h"

#include "engine/objects/ContentText.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>

namespace vellmora {

std::optional<double> numberOf(QPDFObjectHandle object) {
    if (object.isInteger())
        return static_cast<double>(object.getIntValue());
    return object.isReal() ? std::optional(parsedNumber(object.getRealValue())) : std::nullopt;
}

double numberOr(const QPDFObjectHandle& object, double fallback) {
    return numberOf(object).value_or(fallback);
}

int rotationOf(double degrees) {
    const double turn = std::fmod(degrees, 360);
    return std::fmod(turn, 90) == 0 ? (static_cast<int>(turn) + 360) % 360 : 0;
}

int rotationOf(const QPDFObjectHandle& object) {
    return rotationOf(numberOr(object, 0));
}

std::vector<double> numbersOf(QPDFObjectHandle array) {
    std::vector<double> numbers;
    if (!array.isArray())
        return numbers;
    for (const QPDFObjectHandle& item : array.aitems()) {
        const std::optional<double> number = numberOf(item);
        if (!number)
            return {};
        numbers.push_back(*number);
    }
    return numbers;
}

std::optional<Rect> rectangleOf(const QPDFObjectHandle& array) {
    const std::vector<double> edges = numbersOf(array);
    if (edges.size() != 4)
        return std::nullopt;
    return rectFromCorners({edges[0], edges[1]}, {edges[2], edges[3]});
}

std::optional<Rect> boxOf(QPDFObjectHandle array) {
    if (!array.isArray() || array.getArrayNItems() < 4)
        return std::nullopt;
    std::array<double, 4> edges{};
    for (size_t i = 0; i < edges.size(); ++i) {
        const std::optional<double> edge = numberOf(array.getArrayItem(static_cast<int>(i)));
        if (!edge)
            return std::nullopt;
        edges[i] = *edge;
    }
    return boxOf(edges);
}

std::optional<Rect> boxOf(std::array<double, 4> edges) {
    for (double& edge : edges)
        edge = std::clamp(edge, -greatestNumber, greatestNumber);
    const Rect box = rectFromCorners({edges[0], edges[1]}, {edges[2], edges[3]});
    return box.isEmpty() ? std::nullopt : std::optional(box);
}

static QPDFObjectHandle arrayOf(std::initializer_list<double> numbers) {
    QPDFObjectHandle array = QPDFObjectHandle::newArray();
    for (const double number : numbers)
        array.appendItem(QPDFObjectHandle::newReal(pdfNumber(number)));
    return array;
}

QPDFObjectHandle arrayOf(const Rect& rect) {
    return arrayOf({rect.minX(), rect.minY(), rect.maxX(), rect.maxY()});
}

std::string textOf(const Rect& rect) {
    return '[' + pdfNumber(rect.minX()) + ' ' + pdfNumber(rect.minY()) + ' ' + pdfNumber(rect.maxX()) + ' ' +
           pdfNumber(rect.maxY()) + ']';
}

QPDFObjectHandle arrayOf(const Matrix& matrix) {
    return arrayOf({matrix.m11, matrix.m12, matrix.m21, matrix.m22, matrix.dx, matrix.dy});
}

Matrix matrixOf(const QPDFObjectHandle& array) {
    const std::vector<double> m = numbersOf(array);
    return m.size() == 6 ? Matrix{m[0], m[1], m[2], m[3], m[4], m[5]} : Matrix();
}

std::vector<Point> pointsOf(const QPDFObjectHandle& array) {
    const std::vector<double> numbers = numbersOf(array);
    std::vector<Point> points;
    for (size_t i = 0; i + 1 < numbers.size(); i += 2)
        points.push_back({numbers[i], numbers[i + 1]});
    return points;
}

}  // namespace vellmora
