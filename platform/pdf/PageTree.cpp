#include "platform/pdf/PageTree.h"

#include <array>
#include <cmath>
#include <optional>
#include <set>
#include <utility>

namespace vellmora {

namespace {

constexpr Rect letterSize{0, 0, 612, 792};

std::optional<Rect> boxFromArray(QPDFObjectHandle array) {
    if (!array.isArray() || array.getArrayNItems() < 4)
        return std::nullopt;
    std::array<double, 4> edges{};
    for (size_t i = 0; i < edges.size(); ++i) {
        if (!array.getArrayItem(static_cast<int>(i)).getValueAsNumber(edges[i]) || !std::isfinite(edges[i]))
            return std::nullopt;
    }
    const Rect box = rectFromCorners({edges[0], edges[1]}, {edges[2], edges[3]});
    return box.isEmpty() ? std::nullopt : std::optional(box);
}

/// The attributes that a page takes from the nodes above it (ISO 32000-2, table 31).
struct InheritedAttributes {
    QPDFObjectHandle resources = QPDFObjectHandle::newNull();
    QPDFObjectHandle mediaBox = QPDFObjectHandle::newNull();
    QPDFObjectHandle cropBox = QPDFObjectHandle::newNull();
    QPDFObjectHandle rotate = QPDFObjectHandle::newNull();

    InheritedAttributes overriddenBy(QPDFObjectHandle node) const {
        InheritedAttributes result = *this;
        const auto take = [&node](QPDFObjectHandle& attribute, const char* key) {
            QPDFObjectHandle own = node.getKey(key);
            if (!own.isNull())
                attribute = own;
        };
        take(result.resources, "/Resources");
        take(result.mediaBox, "/MediaBox");
        take(result.cropBox, "/CropBox");
        take(result.rotate, "/Rotate");
        return result;
    }
};

SourcePage makePage(const QPDFObjectHandle& dictionary, InheritedAttributes attributes) {
    const Rect mediaBox = boxFromArray(attributes.mediaBox).value_or(letterSize);
    Rect cropBox = intersection(boxFromArray(attributes.cropBox).value_or(mediaBox), mediaBox);
    if (cropBox.isEmpty())
        cropBox = mediaBox;
    double rotation = 0;
    attributes.rotate.getValueAsNumber(rotation);
    const bool isWhole = std::abs(rotation) < 1e6 && rotation == std::floor(rotation);
    const PageOrientation orientation(mediaBox, isWhole ? static_cast<int>(rotation) : 0);
    return {dictionary, attributes.resources, orientation, cropBox};
}

std::vector<SourcePage> walkTree(const QPDFObjectHandle& root) {
    std::vector<SourcePage> pages;
    std::vector<std::pair<QPDFObjectHandle, InheritedAttributes>> open{{root, {}}};
    std::set<QPDFObjGen> visited;
    while (!open.empty()) {
        auto [node, inherited] = std::move(open.back());
        open.pop_back();
        if (!node.isDictionary())
            continue;
        const InheritedAttributes attributes = inherited.overriddenBy(node);
        QPDFObjectHandle kids = node.getKey("/Kids");
        if (!kids.isArray()) {
            if (!node.isDictionaryOfType("/Pages"))
                pages.push_back(makePage(node, attributes));
            continue;
        }
        if (node.isIndirect() && !visited.insert(node.getObjGen()).second)
            continue;
        for (int i = kids.getArrayNItems() - 1; i >= 0; --i)
            open.emplace_back(kids.getArrayItem(i), attributes);
    }
    return pages;
}

/// The page's own attributes and those of the nodes above it, which may be in a loop.
InheritedAttributes attributesFromParents(const QPDFObjectHandle& page) {
    constexpr size_t greatestHeight = 100;
    std::vector<QPDFObjectHandle> nodes;
    for (QPDFObjectHandle node = page; node.isDictionary() && nodes.size() < greatestHeight;
         node = node.getKey("/Parent"))
        nodes.push_back(node);
    InheritedAttributes attributes;
    for (auto node = nodes.rbegin(); node != nodes.rend(); ++node)
        attributes = attributes.overriddenBy(*node);
    return attributes;
}

std::vector<SourcePage> scanForPages(QPDF& qpdf) {
    std::vector<SourcePage> pages;
    std::vector<QPDFObjectHandle> objects = qpdf.getAllObjects();
    for (QPDFObjectHandle& object : objects) {
        if (object.isDictionaryOfType("/Page"))
            pages.push_back(makePage(object, attributesFromParents(object)));
    }
    return pages;
}

}  // namespace

std::vector<SourcePage> collectPages(QPDF& qpdf) {
    std::vector<SourcePage> pages = walkTree(qpdf.getRoot().getKey("/Pages"));
    return pages.empty() ? scanForPages(qpdf) : pages;
}

}  // namespace vellmora
