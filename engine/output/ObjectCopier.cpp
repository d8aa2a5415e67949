#include "engine/output/ObjectCopier.h"

#include "engine/objects/RawStream.h"

#include <algorithm>
#include <array>
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
        else if (!copyReady(known->second, object))
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

/// The types of dictionaries that pages share, and that nobody looks into once they are copied.
constexpr std::array<std::string_view, 6> sharedTypes{"/Font", "/FontDescriptor", "/ExtGState",
                                                      "/OCG",  "/OCMD",           "/Pattern"};

/// The same of all kinds of objects. A form is not among them where its copy may be given what it lacks.
static bool isShared(QPDFObjectHandle object) {
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

static bool holdsReference(std::string_view value) {
    if (value.starts_with("<<") || value.starts_with('[')) {
        PlainObject inner;
        inner.readValue(value);
        return !inner.references().empty();
    }
    return plainReference(value) > 0;
}

/// What is written as it stands: pictures, and what is compressed. Other streams are looked at before they
/// are written.
static bool isReadyStream(const PlainObject& stream) {
    constexpr std::array keysToLookAt{
        "/BBox", "/N", "/Metadata", "/PieceInfo", "/LastModified", "/StructParent", "/StructParents"};
    const bool isFinal = !stream.entry("/Filter").empty() || stream.entry("/Subtype") == "/Image";
    return isFinal && !holdsReference(stream.entry("/Filter")) &&
           !holdsReference(stream.entry("/DecodeParms")) &&
           std::all_of(keysToLookAt.begin(), keysToLookAt.end(),
                       [&stream](const char* key) { return stream.entry(key).empty(); });
}

/// Of a picture: one that may have to be replaced stands in its dictionary afterwards.
static bool hasFinalColorSpace(const PlainObject& stream, const PlainFile& file) {
    const int number = plainReference(stream.entry("/ColorSpace"));
    if (number <= 0)
        return true;
    PlainObject space;
    file.read(number, space);
    return plainWords(space, file).has_value();
}

static bool isReady(const PlainObject& object, const PlainFile& file) {
    return object.isStream() ? isReadyStream(object) && hasFinalColorSpace(object, file)
                             : std::find(sharedTypes.begin(), sharedTypes.end(), object.entry("/Type")) !=
                                   sharedTypes.end();
}

namespace {

/// An object that is shared by pages, and that nobody looks into once it is copied.
struct ReadyObject {
    PlainWords words;
    std::optional<StoredBytes> data;
};

std::optional<ReadyObject> findReady(const PlainFile& file, int number) {
    try {
        PlainObject object;
        file.read(number, object);
        std::optional<PlainWords> words = isReady(object, file) ? plainWords(object, file) : std::nullopt;
        if (!words)
            return std::nullopt;
        if (!object.isStream())
            return ReadyObject{std::move(*words), {}};
        const PlainFile::Range data = file.data(number, object);
        return ReadyObject{std::move(*words), StoredBytes{&file.content(), data.offset, data.length}};
    } catch (const NotPlain&) {
        return std::nullopt;
    }
}

}  // namespace

/// False for objects of other kinds.
bool ObjectCopier::copyReady(QPDFObjectHandle& target, const QPDFObjectHandle& object) {
    const ParsedFile* file = fileOf(object);
    const PlainFile* plain = file ? file->plainFile() : nullptr;
    if (!plain || object.getObjGen().getGen() != 0 || m_nestingOfWords == maxNestingOfWords)
        return false;
    const std::optional<ReadyObject> ready = findReady(*plain, object.getObjGen().getObj());
    if (!ready)
        return false;
    ++m_count;
    target = m_texts.makeObject(m_output);
    CopiedText copied = textOf(ready->words, *object.getOwningQPDF());
    copied.data = ready->data;
    copied.isSharedByPages = true;
    m_texts.set(target, std::move(copied));
    return true;
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
        const bool isSharedByPages = text ? text->isSharedByPages : isShared(copy);
        if (number > 0 && isSharedByPages && except.count(copy.getObjGen()) == 0)
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
