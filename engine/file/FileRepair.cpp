#include "engine/file/FileRepair.h"

#include "engine/file/GivenUpObjects.h"
#include "engine/file/ObjectScan.h"
#include "engine/file/ObjectStream.h"
#include "engine/file/OpenFile.h"
#include "engine/file/TokenMending.h"
#include "engine/objects/CrossReferences.h"

#include <algorithm>
#include <memory>
#include <set>
#include <stdexcept>

#include <qpdf/BufferInputSource.hh>
#include <qpdf/QPDFTokenizer.hh>

namespace vellmora {

namespace {

std::string_view viewOf(const QByteArray& bytes) {
    return {bytes.constData(), static_cast<size_t>(bytes.size())};
}

/// Without a name of a crypt filter nothing is encrypted (ISO 32000-2, table 20).
bool isIdentity(QPDFObjectHandle filter) {
    return !filter.isName() || filter.isNameAndEquals("/Identity");
}

bool concernsAttachmentsOnly(QPDFObjectHandle encryption) {
    constexpr int firstVersionWithFilters = 4;
    QPDFObjectHandle version = encryption.getKey("/V");
    return version.isInteger() && version.getIntValueAsInt() >= firstVersionWithFilters &&
           isIdentity(encryption.getKey("/StmF")) && isIdentity(encryption.getKey("/StrF"));
}

/// How well an object serves as the catalog; a page tree needs one around it.
enum class CatalogRank { none, pageTree, hasPages, catalog };

CatalogRank rankAsCatalog(QPDFObjectHandle object) {
    if (!object.isDictionary())
        return CatalogRank::none;
    if (object.isDictionaryOfType("/Pages"))
        return object.hasKey("/Parent") ? CatalogRank::none : CatalogRank::pageTree;
    if (!object.getKey("/Pages").isDictionary())
        return CatalogRank::none;
    return object.isDictionaryOfType("/Catalog") ? CatalogRank::catalog : CatalogRank::hasPages;
}

constexpr qsizetype longestTrailer = 1 << 16;
/// Numbers of objects that were lost with the file's end, beyond those that are there.
constexpr int mostLost = 1000000;
constexpr const char* emptyCatalog = "<< /Type /Catalog /Pages << /Type /Pages >> >>";

/// The dictionary that the text begins with; empty where it begins with something else, all of the text where
/// the dictionary is not closed.
std::string leadingDictionary(const std::string& text) {
    const auto input = std::make_shared<BufferInputSource>("trailer", text);
    QPDFTokenizer tokenizer;
    tokenizer.allowEOF();
    int depth = 0;
    do {
        const auto type = tokenizer.readToken(input, "", true).getType();
        if (type == QPDFTokenizer::tt_eof)
            break;
        if (type == QPDFTokenizer::tt_dict_open)
            ++depth;
        else if (type == QPDFTokenizer::tt_dict_close)
            --depth;
        else if (depth == 0)
            return {};
    } while (depth > 0);
    return text.substr(0, static_cast<size_t>(input->tell()));
}

/// The file while it is repaired: the damaged one's bytes with a sound beginning and end, and what was found
/// in them. Each step opens the file with what the steps before it have found.
class Repair {
public:
    explicit Repair(const QByteArray& damaged)
        : m_bytes("%PDF-1.7\n" + damaged + "\nendstream\nendobj\n"),
          m_places(scanForObjects(viewOf(m_bytes))) {}

    void mendObjects();
    void findTrailer();
    void findMembersOfObjectStreams();
    void nameLostObjects();
    void findCatalog();
    QByteArray file() const {
        const auto position = static_cast<size_t>(m_bytes.size());
        return m_bytes +
               QByteArray::fromStdString(crossReferences(m_places, m_trailer, position, unusedNumber()));
    }

private:
    /// The objects that there are may refer to others that were lost with the file's end.
    int unusedNumber() const {
        const int greatest = m_places.empty() ? 0 : m_places.rbegin()->first;
        return std::max(std::min(greatest + mostLost, greatestObjectNumber), greatest + 1);
    }
    std::map<size_t, QPDFObjectHandle> trailersByPosition(QPDF& file);
    QPDFObjectHandle trailerAt(QPDF& file, size_t position, size_t next);
    void addMembers(int container, size_t position, const QPDFObjectHandle& stream);

    QByteArray m_bytes;
    ObjectPlaces m_places;
    Trailer m_trailer{emptyCatalog, {}, {}};
    ObjectPlaces m_objectStreams;
    QPDFObjGen m_statedRoot;
};

/// The objects that libqpdf gives up are lost for the steps that follow.
void Repair::mendObjects() {
    const SnapshotReader content(this->file());
    QPDF file;
    openFile(file, content);
    applyMends(mendsOfGivenUpObjects(file, viewOf(m_bytes)), m_bytes.data());
}

/// Null where none can be parsed. It ends before the next one, so that many of them are read in the time of
/// one.
QPDFObjectHandle Repair::trailerAt(QPDF& file, size_t position, size_t next) {
    const auto length = std::min(static_cast<qsizetype>(next - position), longestTrailer);
    QByteArray text = m_bytes.mid(static_cast<qsizetype>(position), length);
    applyMends(mendsOfObject(viewOf(text), 0), text.data());
    try {
        return QPDFObjectHandle::parse(&file, leadingDictionary(text.toStdString()));
    } catch (const std::runtime_error&) {
        return QPDFObjectHandle::newNull();
    }
}

std::map<size_t, QPDFObjectHandle> Repair::trailersByPosition(QPDF& file) {
    std::map<size_t, QPDFObjectHandle> trailers;
    const std::vector<size_t> positions = scanForTrailers(viewOf(m_bytes));
    for (size_t i = 0; i < positions.size(); ++i) {
        const bool isLast = i + 1 == positions.size();
        const size_t next = isLast ? static_cast<size_t>(m_bytes.size()) : positions[i + 1];
        trailers[positions[i]] = trailerAt(file, positions[i], next);
    }
    for (const auto& [number, place] : m_places) {
        QPDFObjectHandle object = file.getObject(number, place.detail);
        if (object.isStreamOfType("/XRef"))
            trailers[place.position] = object.getDict();
        else if (object.isStreamOfType("/ObjStm"))
            m_objectStreams[number] = place;
    }
    return trailers;
}

void Repair::findTrailer() {
    const SnapshotReader content(this->file());
    QPDF file;
    openFile(file, content);
    for (auto& [position, trailer] : trailersByPosition(file)) {
        if (!trailer.isDictionary())
            continue;
        QPDFObjectHandle root = trailer.getKey("/Root");
        if (root.isIndirect())
            m_statedRoot = root.getObjGen();
        else if (root.isDictionary())
            m_trailer.root = root.unparse();
        if (trailer.getKey("/ID").isArray())
            m_trailer.id = trailer.getKey("/ID").unparse();
        QPDFObjectHandle encryption = trailer.getKey("/Encrypt");
        if (encryption.isDictionary() && !concernsAttachmentsOnly(encryption))
            m_trailer.encrypt = encryption.unparse();
    }
}

void Repair::findMembersOfObjectStreams() {
    const SnapshotReader content(this->file());
    QPDF file;
    openFile(file, content);
    for (const auto& [number, place] : m_objectStreams)
        addMembers(number, place.position, file.getObject(number, place.detail));
}

void Repair::addMembers(int container, size_t position, const QPDFObjectHandle& stream) {
    int index = 0;
    const ObjectStream members(stream);
    for (const int number : members.numbers()) {
        const auto known = m_places.find(number);
        if (isObjectNumber(number) && (known == m_places.end() || known->second.position <= position))
            m_places[number] = {position, container, index};
        ++index;
    }
}

/// From version 12 on, libqpdf takes a reference to an object that is not in the table for a plain null, and
/// nobody can tell that something is missing. An object that should be in a stream and is not there is null,
/// too, but an object.
void Repair::nameLostObjects() {
    const int greatest = m_places.empty() ? 0 : m_places.rbegin()->first;
    std::set<int> lost;
    for (const int number : scanForReferences(viewOf(m_bytes))) {
        if (number <= greatest + mostLost && m_places.count(number) == 0)
            lost.insert(number);
    }
    if (lost.empty())
        return;
    const int stream = std::max(greatest, *lost.rbegin()) + 1;
    const auto position = static_cast<size_t>(m_bytes.size());
    m_bytes += QByteArray::number(stream) +
               " 0 obj\n<</Type/ObjStm/N 0/First 0/Length 0>>\nstream\n\nendstream\nendobj\n";
    m_places[stream] = {position, 0, 0};
    for (const int number : lost)
        m_places[number] = {position, stream, 0};
}

void Repair::findCatalog() {
    if (m_trailer.root != emptyCatalog)
        return;
    const SnapshotReader content(this->file());
    QPDF file;
    openFile(file, content);
    QPDFObjectHandle stated = file.getObject(m_statedRoot);
    if (rankAsCatalog(stated) >= CatalogRank::hasPages) {
        m_trailer.root = stated.unparse();
        return;
    }
    CatalogRank best = CatalogRank::none;
    for (QPDFObjectHandle object : file.getAllObjects()) {
        const CatalogRank rank = rankAsCatalog(object);
        if (rank == CatalogRank::none || rank < best)
            continue;
        best = rank;
        const std::string reference = object.unparse();
        m_trailer.root =
            rank == CatalogRank::pageTree ? "<< /Type /Catalog /Pages " + reference + " >>" : reference;
    }
}

}  // namespace

QByteArray repairedFile(const QByteArray& damaged) {
    Repair repair(damaged);
    repair.mendObjects();
    repair.findTrailer();
    repair.findMembersOfObjectStreams();
    repair.nameLostObjects();
    repair.findCatalog();
    return repair.file();
}

}  // namespace vellmora
