#include "engine/file/GivenUpObjects.h"

#include "engine/file/ObjectScan.h"
#include "engine/file/ObjectStream.h"
#include "engine/objects/RawStream.h"

#include <exception>
#include <map>
#include <new>

namespace vellmora {

namespace {

constexpr int ownObject = 1;
constexpr int memberOfStream = 2;

using Table = std::map<QPDFObjGen, QPDFXRefEntry>;

/// The entries of the objects that are null for libqpdf.
Table nullObjects(QPDF& file) {
    const Table all = file.getXRefTable();
    Table nulls;
    for (const auto& [id, entry] : all) {
        if (file.getObject(id).isNull())
            nulls.emplace(id, entry);
    }
    return nulls;
}

/// Positions count from the file's header.
size_t headerPosition(std::string_view bytes) {
    constexpr size_t searched = 1024;
    const size_t found = bytes.substr(0, searched).find("%PDF-");
    return found == std::string_view::npos ? 0 : found;
}

QByteArray mendedBytes(std::string_view bytes, const std::vector<Mend>& mends) {
    QByteArray copy(bytes.data(), static_cast<qsizetype>(bytes.size()));
    applyMends(mends, copy.data());
    return copy;
}

}  // namespace

std::vector<Mend> mendsOfGivenUpObjects(QPDF& file, std::string_view bytes) {
    std::vector<Mend> mends;
    const size_t origin = headerPosition(bytes);
    for (const auto& [id, entry] : nullObjects(file)) {
        if (entry.getType() != ownObject)
            continue;
        const auto offset = origin + static_cast<size_t>(entry.getOffset());
        if (const auto value = valuePosition(bytes, offset, id.getObj())) {
            const std::vector<Mend> found = mendsOfObject(bytes, *value);
            mends.insert(mends.end(), found.begin(), found.end());
        }
    }
    return mends;
}

GivenUpObjects::GivenUpObjects(std::string_view bytes, const std::vector<Mend>& mends, Damage damage)
    : m_content(mendedBytes(bytes, mends)) {
    openFile(m_copy, m_content, damage);
}

std::unique_ptr<GivenUpObjects> GivenUpObjects::bringBack(QPDF& file, const SnapshotReader& content,
                                                          Damage damage) {
    const std::string_view bytes = content.all();
    const std::vector<Mend> mends = mendsOfGivenUpObjects(file, bytes);
    std::map<int, std::vector<QPDFObjGen>> members;
    const Table nulls = nullObjects(file);
    for (const auto& [id, entry] : nulls) {
        if (entry.getType() == memberOfStream)
            members[entry.getObjStreamNumber()].push_back(id);
    }
    if (mends.empty() && members.empty())
        return nullptr;
    std::unique_ptr<GivenUpObjects> objects(new GivenUpObjects(bytes, mends, damage));
    bool isAnyBack = false;
    for (const auto& [id, entry] : nulls)
        isAnyBack |= entry.getType() == ownObject && objects->replace(file, id);
    for (const auto& [container, ids] : members)
        isAnyBack |= objects->replaceMembers(file, container, ids);
    return isAnyBack ? std::move(objects) : nullptr;
}

/// By its text, in which strings are not encrypted any more.
bool GivenUpObjects::replace(QPDF& file, const QPDFObjGen& id) {
    QPDFObjectHandle mended = m_copy.getObject(id);
    if (mended.isNull())
        return false;
    if (!mended.isStream()) {
        file.replaceObject(id, QPDFObjectHandle::parse(&file, mended.unparseResolved()));
        return true;
    }
    QPDFObjectHandle stream = file.newStream();
    stream.replaceDict(QPDFObjectHandle::parse(&file, mended.getDict().unparse()));
    const QPDFObjectHandle unchanged;
    stream.replaceStreamData(std::make_shared<RawStream>(mended), unchanged, unchanged);
    stream.getDict().removeKey("/Length");
    file.swapObjects(id, stream.getObjGen());
    return true;
}

bool GivenUpObjects::replaceMembers(QPDF& file, int container, const std::vector<QPDFObjGen>& ids) {
    bool isAnyBack = false;
    const ObjectStream stream(m_copy.getObject(container, 0));
    for (const QPDFObjGen& id : ids) {
        std::string text = stream.textOf(id.getObj());
        const std::vector<Mend> mends = mendsOfObject(text, 0);
        applyMends(mends, text.data());
        try {
            QPDFObjectHandle mended = QPDFObjectHandle::parse(&file, text);
            if (mended.isNull())
                continue;
            file.replaceObject(id, mended);
            isAnyBack = true;
        } catch (const std::bad_alloc&) {
            throw;
        } catch (const std::exception&) {  // NOLINT(bugprone-empty-catch): it stays lost
        }
    }
    return isAnyBack;
}

}  // namespace vellmora
