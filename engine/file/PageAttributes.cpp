#include "engine/file/PageAttributes.h"

#include "engine/objects/PDFValues.h"

#include <optional>

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

ParsedPage makePage(const QPDFObjectHandle& dictionary, const InheritedAttributes& attributes) {
    const Rect mediaBox = boxOf(attributes.mediaBox).value_or(letterSize);
    const std::optional<Rect> statedCropBox = boxOf(attributes.cropBox);
    Rect cropBox = intersection(statedCropBox.value_or(mediaBox), mediaBox);
    if (cropBox.isEmpty())
        cropBox = mediaBox;
    const PageOrientation orientation(mediaBox, rotationOf(attributes.rotate));
    return {dictionary, attributes.resources, attributes.outerResources, orientation, cropBox, statedCropBox,
            false};
}

}  // namespace vellmora
