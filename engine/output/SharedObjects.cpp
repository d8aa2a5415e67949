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

void require(bool isPlain) {
    if (!isPlain)
        throw NotPlain();
}

bool holdsReference(std::string_view value) {
    if (value.starts_with("<<") || value.starts_with('[')) {
        PlainObject inner;
        inner.readValue(value);
        return !inner.references().empty();
    }
    return plainReference(value) > 0;
}

/// Other streams are looked at before they are written.
void requireReadyStream(const PlainObject& stream) {
    constexpr std::array remarks{"/Metadata", "/PieceInfo", "/LastModified", "/StructParent",
                                 "/StructParents"};
    require(std::all_of(remarks.begin(), remarks.end(),
                        [&stream](const char* key) { return stream.entry(key).empty(); }));
    require(stream.entry("/Filter") != "null" && !holdsReference(stream.entry("/Filter")) &&
            !holdsReference(stream.entry("/DecodeParms")));
    // A profile of one component may have to be replaced.
    require(stream.entry("/N").empty() || plainNumber(stream.entry("/N")) > 1);
}

/// What was not compressed so far is, except pictures.
Packing packingOf(const PlainObject& stream, size_t length) {
    const bool isStored = !stream.entry("/Filter").empty() || stream.entry("/Subtype") == "/Image" ||
                          length > largestToCompress;
    require(isStored || stream.entry("/DecodeParms").empty());
    return isStored ? Packing::asTheyAre : Packing::compress;
}

bool isPlainDictionary(std::string_view value, const PlainFile& file) {
    const int number = plainReference(value);
    if (number <= 0)
        return value.starts_with("<<");
    PlainObject object;
    file.read(number, object);
    return object.isDictionary() && !object.isStream();
}

/// Of a picture: one that may have to be replaced stands in its dictionary afterwards.
void requireFinalColorSpace(int picture, const PlainFile& file) {
    PlainObject object;
    file.read(picture, object);
    if (const int number = plainReference(object.entry("/ColorSpace")); number > 0) {
        PlainWords words;
        file.read(number, object);
        addPlainWords(words, object, file);
    }
}

PlainKind kindOfStream(const PlainObject& stream, int number, const PlainFile& file) {
    requireReadyStream(stream);
    const PlainFile::Range data = file.data(number, stream);
    PlainKind kind{StoredBytes{&file.content(), data.offset, data.length}};
    const std::string_view subtype = stream.entry("/Subtype");
    kind.packing = packingOf(stream, data.length);
    kind.isForm = !stream.entry("/BBox").empty();
    kind.isShared = !kind.isForm || (!subtype.empty() && isPlainDictionary(stream.entry("/Resources"), file));
    return kind;
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

PlainKind addPlainObject(PlainWords& words, int number, const PlainFile& file) {
    PlainObject object;
    file.read(number, object);
    addPlainWords(words, object, file);
    if (object.isStream())
        return kindOfStream(object, number, file);
    const bool isShared =
        std::find(sharedTypes.begin(), sharedTypes.end(), object.entry("/Type")) != sharedTypes.end();
    return {{}, Packing::asTheyAre, false, object.isDictionary() && isShared};
}

std::optional<PlainSharedObject> plainSharedObject(int number, const PlainFile& file) {
    try {
        PlainSharedObject shared;
        const PlainKind kind = addPlainObject(shared.words, number, file);
        shared.data = kind.data;
        if (kind.data)
            requireFinalColorSpace(number, file);
        const bool isFinal = kind.isShared && !kind.isForm && kind.packing == Packing::asTheyAre;
        return isFinal ? std::optional(std::move(shared)) : std::nullopt;
    } catch (const NotPlain&) {
        return std::nullopt;
    }
}

}  // namespace vellmora
