#include "engine/output/ObjectCopier.h"

#include "engine/objects/RawStream.h"

#include <algorithm>
#include <array>
#include <memory>
#include <optional>

namespace vellmora {

QPDFObjectHandle ObjectCopier::copy(const QPDFObjectHandle& object) {
    const QPDFObjectHandle result = counterpart(object);
    while (!m_pending.empty()) {
        const auto [target, source] = std::move(m_pending.back());
        m_pending.pop_back();
        fill(target, source);
    }
    return result;
}

void ObjectCopier::forgetStep() {
    for (const Source& source : m_copiedInStep)
        m_copies.erase(source);
    m_copiedInStep.clear();
}

/// Room for the keyword and the white space before it.
constexpr size_t longestEnd = 32;

/// The stated length holds where the keyword follows (ISO 32000-2, 7.3.8.1).
static std::optional<StoredBytes> storedBytes(QPDFObjectHandle stream, const SnapshotReader& file) {
    QPDFObjectHandle stated = stream.getDict().getKey("/Length");
    if (!stated.isInteger() || stated.getIntValue() < 0 || stream.getParsedOffset() < 0)
        return std::nullopt;
    const auto start = static_cast<size_t>(stream.getParsedOffset());
    const auto length = static_cast<size_t>(stated.getIntValue());
    if (start > file.size() || length > file.size() - start)
        return std::nullopt;
    const size_t end = start + length;
    const std::string_view rest = file.range(end, std::min(longestEnd, file.size() - end));
    const size_t keyword = rest.find_first_not_of("\r\n\t ");
    const bool isWhole = keyword != std::string_view::npos && rest.substr(keyword).starts_with("endstream");
    return isWhole ? std::optional(StoredBytes{&file, start, length}) : std::nullopt;
}

void ObjectCopier::carryData(QPDFObjectHandle target, const QPDFObjectHandle& source) {
    target.replaceStreamData(std::make_shared<RawStream>(source), QPDFObjectHandle::newNull(),
                             QPDFObjectHandle::newNull());
    m_carriedStreams.push_back(target);
    const auto file = m_files.find(source.getOwningQPDF());
    if (file == m_files.end() || !file->second.hasPlainStreams)
        return;
    if (const auto bytes = storedBytes(source, *file->second.content))
        m_storedStreams.add(target, *bytes);
}

static bool isPageNode(QPDFObjectHandle object) {
    if (!object.isDictionary())
        return false;
    QPDFObjectHandle type = object.getKey("/Type");
    return type.isNameAndEquals("/Page") || type.isNameAndEquals("/Pages");
}

QPDFObjectHandle ObjectCopier::counterpart(QPDFObjectHandle object, int levels) {
    if (levels == 0)
        return QPDFObjectHandle::newNull();
    if (object.isIndirect()) {
        const auto [known, isNew] =
            m_copies.try_emplace({m_files[object.getOwningQPDF()].content, object.getObjGen()});
        if (isNew) {
            m_copiedInStep.push_back(known->first);
            const auto written = standIn(known->first, object);
            known->second = written ? *written : makeCounterpart(object);
        }
        return known->second;
    }
    if (!object.isDictionary() && !object.isArray())
        return object.shallowCopy();
    if (isPageNode(object))
        return QPDFObjectHandle::newNull();
    auto result = object.isArray() ? QPDFObjectHandle::newArray() : QPDFObjectHandle::newDictionary();
    fill(result, object, levels);
    return result;
}

/// The kinds of objects that pages share, and that nobody looks into once they are copied. A form is not
/// among them where its copy may be given what it lacks.
static bool isShared(QPDFObjectHandle object) {
    if (object.isStream()) {
        QPDFObjectHandle dictionary = object.getDict();
        return !dictionary.hasKey("/BBox") ||
               (dictionary.hasKey("/Subtype") && dictionary.getKey("/Resources").isDictionary());
    }
    if (!object.isDictionary())
        return false;
    constexpr std::array kinds{"/Font", "/FontDescriptor", "/ExtGState", "/OCG", "/OCMD", "/Pattern"};
    QPDFObjectHandle type = object.getKey("/Type");
    return std::any_of(kinds.begin(), kinds.end(),
                       [&type](const char* kind) { return type.isNameAndEquals(kind); });
}

std::optional<QPDFObjectHandle> ObjectCopier::standIn(const Source& source, QPDFObjectHandle object) {
    const int number = m_written.find(source.first, source.second);
    if (number == 0)
        return std::nullopt;
    QPDFObjectHandle result = object.isStream()
                                  ? m_output.newStream()
                                  : m_output.makeIndirectObject(QPDFObjectHandle::newDictionary());
    m_standIns.emplace_back(result, number);
    return result;
}

void ObjectCopier::tellWritten(const ObjectNumbers& numbers, const std::set<QPDFObjGen>& except,
                               WrittenObjects& written) const {
    for (const auto& [source, copy] : m_copies) {
        const int number = copy.isIndirect() ? numbers.find(copy) : 0;
        if (number > 0 && isShared(copy) && except.count(copy.getObjGen()) == 0)
            written.add(source.first, source.second, number);
    }
}

/// Containers stay empty for now: what they contain may lead back to them.
QPDFObjectHandle ObjectCopier::makeCounterpart(QPDFObjectHandle object) {
    ++m_count;
    if (object.isStream()) {
        QPDFObjectHandle stream = m_output.newStream();
        carryData(stream, object);
        m_pending.emplace_back(stream, object);
        return stream;
    }
    if (isPageNode(object))
        return QPDFObjectHandle::newNull();
    if (!object.isDictionary() && !object.isArray())
        return object.isNull() ? QPDFObjectHandle::newNull()
                               : m_output.makeIndirectObject(object.shallowCopy());
    QPDFObjectHandle container = m_output.makeIndirectObject(
        object.isArray() ? QPDFObjectHandle::newArray() : QPDFObjectHandle::newDictionary());
    m_pending.emplace_back(container, object);
    return container;
}

void ObjectCopier::fill(QPDFObjectHandle target, QPDFObjectHandle source, int levels) {
    if (source.isStream()) {
        fill(target.getDict(), source.getDict(), levels);
        target.getDict().removeKey("/Length");  // the file's own may be wrong
        return;
    }
    if (source.isArray()) {
        for (const QPDFObjectHandle& item : source.aitems())
            target.appendItem(counterpart(item, levels - 1));
        return;
    }
    for (const auto& [key, value] : source.ditems())
        target.replaceKey(key, counterpart(value, levels - 1));
}

}  // namespace vellmora
