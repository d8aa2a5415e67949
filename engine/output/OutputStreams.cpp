#include "engine/output/OutputStreams.h"

#include "engine/objects/DecodedBytes.h"

#include <exception>
#include <new>
#include <set>
#include <string>
#include <utility>

namespace vellmora {

namespace {

/// Remarks about a picture or a form that are not drawn: who made it, what a structure tree says of it.
void removeRemarks(QPDFObjectHandle stream) {
    QPDFObjectHandle dictionary = stream.getDict();
    for (const char* key : {"/Metadata", "/PieceInfo", "/LastModified", "/StructParent", "/StructParents"})
        dictionary.removeKey(key);
}

bool makeFiltersDirect(QPDFObjectHandle stream) {
    QPDFObjectHandle dictionary = stream.getDict();
    for (const char* key : {"/Filter", "/DecodeParms"}) {
        QPDFObjectHandle value = dictionary.getKey(key);
        const bool hasReference = value.isIndirect() || (value.isArray() && value.getArrayNItems() > 0 &&
                                                         value.getArrayItem(0).isIndirect());
        if (!hasReference)
            continue;
        value.makeDirect(true);
        dictionary.replaceKey(key, value);
    }
    return true;
}

/// A profile of one component whose header (ICC.1, 7.2.6) names another colour space than grey.
bool contradictsItself(QPDFObjectHandle stream) {
    QPDFObjectHandle components = stream.getDict().getKey("/N");
    if (!components.isInteger() || components.getIntValue() != 1 || stream.isStreamOfType("", "/Image"))
        return false;
    const std::string bytes = leadingBytes(stream, 41);
    return bytes.size() > 40 && bytes.compare(36, 4, "acsp") == 0 && bytes.compare(16, 4, "GRAY") != 0;
}

/// What is damaged in a stream's own dictionary is carried over as it is.
template <typename Step>
bool attempt(Step step) {
    try {
        return step();
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception&) {
        return false;
    }
}

/// Replaces the colour spaces that are based on the given profiles.
class ProfileReplacement {
public:
    explicit ProfileReplacement(std::set<QPDFObjGen> profiles) : m_profiles(std::move(profiles)) {}

    bool isMeant(QPDFObjectHandle value) const {
        return value.isArray() && value.getArrayNItems() == 2 &&
               value.getArrayItem(0).isNameAndEquals("/ICCBased") &&
               m_profiles.count(value.getArrayItem(1).getObjGen()) > 0;
    }
    static QPDFObjectHandle replacement() { return QPDFObjectHandle::newName("/DeviceGray"); }

    /// In an object and what is directly in it.
    void replaceIn(QPDFObjectHandle container, int levels = 100) const {
        if (levels == 0)
            return;
        if (container.isStream())
            container = container.getDict();
        if (container.isDictionary()) {
            for (const auto& [key, value] : container.ditems()) {
                if (isMeant(value))
                    container.replaceKey(key, replacement());
                else if (!QPDFObjectHandle(value).isIndirect())
                    replaceIn(value, levels - 1);
            }
        } else if (container.isArray()) {
            for (int i = 0; i < container.getArrayNItems(); ++i) {
                QPDFObjectHandle item = container.getArrayItem(i);
                if (isMeant(item))
                    container.setArrayItem(i, replacement());
                else if (!item.isIndirect())
                    replaceIn(item, levels - 1);
            }
        }
    }

private:
    std::set<QPDFObjGen> m_profiles;
};

void replaceProfiles(QPDF& output, const std::set<QPDFObjGen>& profiles) {
    const ProfileReplacement replacement(profiles);
    for (const QPDFObjectHandle& object : output.getAllObjects()) {
        if (replacement.isMeant(object))
            output.replaceObject(object.getObjGen(), ProfileReplacement::replacement());
        else
            replacement.replaceIn(object);
    }
}

}  // namespace

std::set<QPDFObjGen> prepareStreams(QPDF& output, const std::vector<QPDFObjectHandle>& streams) {
    std::set<QPDFObjGen> profiles;
    for (const QPDFObjectHandle& stream : streams) {
        removeRemarks(stream);
        attempt([&] { return makeFiltersDirect(stream); });
        if (attempt([&] { return contradictsItself(stream); }))
            profiles.insert(stream.getObjGen());
    }
    if (!profiles.empty())
        replaceProfiles(output, profiles);
    return profiles;
}

}  // namespace vellmora
