#include "engine/output/SharedObjects.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace vellmora {

namespace {

/// Of dictionaries.
constexpr std::array<std::string_view, 6> sharedTypes{"/Font", "/FontDescriptor", "/ExtGState",
                                                      "/OCG",  "/OCMD",           "/Pattern"};

bool holdsReference(std::string_view value) {
    if (value.starts_with("<<") || value.starts_with('[')) {
        PlainObject inner;
        inner.readValue(value);
        return !inner.references().empty();
    }
    return plainReference(value) > 0;
}

/// What is written as it stands: pictures, and what is compressed. Other streams are looked at before they
/// are written.
bool isReadyStream(const PlainObject& stream) {
    constexpr std::array keysToLookAt{
        "/BBox", "/N", "/Metadata", "/PieceInfo", "/LastModified", "/StructParent", "/StructParents"};
    const bool isFinal = !stream.entry("/Filter").empty() || stream.entry("/Subtype") == "/Image";
    return isFinal && !holdsReference(stream.entry("/Filter")) &&
           !holdsReference(stream.entry("/DecodeParms")) &&
           std::all_of(keysToLookAt.begin(), keysToLookAt.end(),
                       [&stream](const char* key) { return stream.entry(key).empty(); });
}

/// Of a picture: one that may have to be replaced stands in its dictionary afterwards.
bool hasFinalColorSpace(const PlainObject& stream, const PlainFile& file) {
    const int number = plainReference(stream.entry("/ColorSpace"));
    if (number <= 0)
        return true;
    PlainObject space;
    file.read(number, space);
    return plainWords(space, file).has_value();
}

bool isReady(const PlainObject& object, const PlainFile& file) {
    return object.isStream() ? isReadyStream(object) && hasFinalColorSpace(object, file)
                             : std::find(sharedTypes.begin(), sharedTypes.end(), object.entry("/Type")) !=
                                   sharedTypes.end();
}

}  // namespace

bool isSharedByPages(QPDFObjectHandle object) {
    if (object.isStream()) {
        QPDFObjectHandle dictionary = object.getDict();
        return !dictionary.hasKey("/BBox") ||
               (dictionary.hasKey("/Subtype") && dictionary.getKey("/Resources").isDictionary());
    }
    if (!object.isDictionary())
        return false;
    QPDFObjectHandle type = object.getKey("/Type");
    return std::any_of(sharedTypes.begin(), sharedTypes.end(),
                       [&type](std::string_view shared) { return type.isNameAndEquals(shared.data()); });
}

std::optional<PlainSharedObject> plainSharedObject(const PlainFile& file, int number) {
    try {
        PlainObject object;
        file.read(number, object);
        std::optional<PlainWords> words = isReady(object, file) ? plainWords(object, file) : std::nullopt;
        if (!words)
            return std::nullopt;
        if (!object.isStream())
            return PlainSharedObject{std::move(*words), {}};
        const PlainFile::Range data = file.data(number, object);
        return PlainSharedObject{std::move(*words), StoredBytes{&file.content(), data.offset, data.length}};
    } catch (const NotPlain&) {
        return std::nullopt;
    }
}

}  // namespace vellmora
