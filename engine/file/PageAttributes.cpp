#include "engine/file/PageAttributes.h"

#include "engine/objects/ContentText.h"
#include "engine/objects/PDFValues.h"

#include <array>

namespace vellmora {

constexpr Rect letterSize{0, 0, 612, 792};

InheritedAttributes InheritedAttributes::overriddenBy(QPDFObjectHandle node) const {
    InheritedAttributes result = *this;
    const auto take = [&node](QPDFObjectHandle& attribute, const char* key) {
        QPDFObjectHandle own = node.getKey(key);
        if (!own.isNull())
            attribute = own;
    };
    take(result.mediaBox, "/MediaBox");
    take(result.cropBox, "/CropBox");
    take(result.rotate, "/Rotate");
    result.takeResources(node.getKey("/Resources"));
    return result;
}

void InheritedAttributes::takeResources(const QPDFObjectHandle& own) {
    if (!own.isIndirect() && QPDFObjectHandle(own).isNull())
        return;
    outerResources = resources;
    resources = own;
}

PageFrame::PageFrame(const std::optional<Rect>& statedMediaBox, const std::optional<Rect>& cropBoxOfFile,
                     int rotation)
    : orientation(statedMediaBox.value_or(letterSize), rotation), statedCropBox(cropBoxOfFile) {
    const Rect mediaBox = orientation.mediaBox();
    cropBox = intersection(statedCropBox.value_or(mediaBox), mediaBox);
    if (cropBox.isEmpty())
        cropBox = mediaBox;
}

ParsedPage makePage(const QPDFObjectHandle& dictionary, const InheritedAttributes& attributes) {
    const PageFrame frame(boxOf(attributes.mediaBox), boxOf(attributes.cropBox),
                          rotationOf(attributes.rotate));
    return {dictionary,
            attributes.resources,
            attributes.outerResources,
            frame.orientation,
            frame.cropBox,
            frame.statedCropBox,
            false};
}

/// References and whatever else is no plain value are left to others.
static void requireNumbers(std::string_view text) {
    if (text.find_first_not_of("[]+-.0123456789 \t\r\n\f") != std::string_view::npos ||
        text.find('[', 1) != std::string_view::npos)
        throw NotPlain();
}

std::optional<Rect> plainBox(std::string_view text) {
    requireNumbers(text);
    if (!text.starts_with('['))
        return std::nullopt;
    PlainObject array;
    array.readValue(text);
    std::array<double, 4> edges{};
    if (array.items().size() < edges.size())
        return std::nullopt;
    for (size_t i = 0; i < edges.size(); ++i)
        edges[i] = parsedNumber(array.items()[i]);
    return boxOf(edges);
}

int plainRotation(std::string_view text) {
    requireNumbers(text);
    return rotationOf(text.starts_with('[') ? 0 : parsedNumber(text));
}

}  // namespace vellmora
