#include "engine/output/ObjectCopier.h"

#include "engine/objects/RawStream.h"
#include "engine/output/SharedObjects.h"

#include <algorithm>
#include <memory>
#include <optional>

namespace vellmora {

QPDFObjectHandle ObjectCopier::copy(const QPDFObjectHandle& object) {
    QPDFObjectHandle result = counterpart(object);
    fillPending();
    return result;
}

void ObjectCopier::fillPending() {
    while (!m_pending.empty()) {
        const auto [target, source] = std::move(m_pending.back());
        m_pending.pop_back();
        fill(target, source);
    }
}

const ParsedFile* ObjectCopier::fileOf(const QPDFObjectHandle& object) const {
    const auto file = m_files.find(object.getOwningQPDF());
    return file == m_files.end() ? nullptr : file->second;
}

ObjectCopier::Source ObjectCopier::sourceOf(const QPDFObjectHandle& object) const {
    const ParsedFile* file = fileOf(object);
    return {file ? &file->content() : nullptr, object.getObjGen()};
}

QPDFObjectHandle ObjectCopier::copyInWords(const QPDFObjectHandle& object, const PlainWords& words) {
    const auto [known, isNew] = m_copies.try_emplace(sourceOf(object));
    if (isNew) {
        m_copiedInStep.push_back(known->first);
        known->second = m_texts.makeObject(m_output);
        m_texts.set(known->second, textOf(words, *object.getOwningQPDF()));
        fillPending();
    }
    return known->second;
}

/// References may lead to objects that are put into words too.
CopiedText ObjectCopier::textOf(const PlainWords& words, QPDF& file) {
    ObjectText text;
    ++m_nestingOfWords;
    text.add(words, [&](int number) { return counterpart(file.getObject(number, 0)); });
    --m_nestingOfWords;
    return text.take();
}

QPDFObjectHandle ObjectCopier::add(CopiedText text) {
    QPDFObjectHandle object = m_texts.makeObject(m_output);
    m_texts.set(object, std::move(text));
    return object;
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
    const ParsedFile* file = fileOf(source);
    if (!file || file->isEncrypted())
        return;
    if (const auto bytes = storedBytes(source, file->content()))
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
        const auto [known, isNew] = m_copies.try_emplace(sourceOf(object));
        if (!isNew)
            return known->second;
        m_copiedInStep.push_back(known->first);
        if (const auto written = standIn(known->first, object))
            known->second = *written;
        else if (!copyShared(known->second, object))
            known->second = makeCounterpart(object);
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

/// In words; false for an object that is not shared, or not plain.
bool ObjectCopier::copyShared(QPDFObjectHandle& target, const QPDFObjectHandle& object) {
    const ParsedFile* file = fileOf(object);
    const PlainFile* plain = file ? file->plainFile() : nullptr;
    if (!plain || object.getObjGen().getGen() != 0 || m_nestingOfWords == maxNestingOfWords)
        return false;
    const std::optional<PlainSharedObject> shared = plainSharedObject(object.getObjGen().getObj(), *plain);
    if (!shared)
        return false;
    ++m_count;
    target = m_texts.makeObject(m_output);
    CopiedText copied = textOf(shared->words, *object.getOwningQPDF());
    copied.data = shared->data;
    copied.isSharedByPages = true;
    m_texts.set(target, std::move(copied));
    return true;
}

std::optional<QPDFObjectHandle> ObjectCopier::find(const SnapshotReader* file, int number) const {
    const auto found = m_copies.find({file, QPDFObjGen(number, 0)});
    const bool isObject = found != m_copies.end() && QPDFObjectHandle(found->second).isIndirect();
    return isObject ? std::optional(found->second) : std::nullopt;
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
        const CopiedText* text = m_texts.find(copy);
        const bool isShared = text ? text->isSharedByPages : isSharedByPages(copy);
        if (number > 0 && isShared && except.count(copy.getObjGen()) == 0)
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
