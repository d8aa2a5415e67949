#include "engine/output/FileWriter.h"

#include "picture/DeflateStream.h"

#include <optional>
#include <utility>

#include <QUuid>

#include <qpdf/Pl_String.hh>

namespace vellmora {

namespace {

/// The comment tells programs that transfer files that this one is not text.
constexpr std::string_view header = "%PDF-1.7\n%\xbf\xf7\xa2\xfe\n";
constexpr size_t blockSize = 1 << 18;
/// From this size on bytes are handed over as they lie.
constexpr size_t largeSize = 1 << 14;
/// Readers unpack the whole stream for one of its objects.
constexpr size_t objectsInStream = 100;

using Handle = QPDFObjectHandle;
using Entries = std::map<std::string, Handle>;

/// What was not compressed so far is, except pictures: trying costs seconds and gains little.
bool isToBeCompressed(Handle stream) {
    return stream.getDict().getKey("/Filter").isNull() && !stream.isStreamOfType("", "/Image");
}

std::string newIdentifier() {
    const QByteArray half = '<' + QUuid::createUuid().toRfc4122().toHex() + '>';
    return '[' + half.toStdString() + half.toStdString() + ']';
}

}  // namespace

FileWriter::FileWriter(PDFDataConsumer& consumer)
    : m_consumer(consumer), m_streamText(m_numbers), m_packedText(m_numbers) {
    m_block.reserve(blockSize);
    put(header);
}

void FileWriter::writeObjects(const StoredStreams& streams, const CopiedTexts& texts) {
    while (const auto numbered = m_numbers.next()) {
        const auto& [number, object] = *numbered;
        const CopiedText* text = texts.find(object);
        if (!text) {
            writeObject(number, object, streams);
        } else if (text->data) {
            writeCopiedStream(number, *text);
        } else {
            beginPacked(number);
            m_packedText.add(*text);
            endPacked();
        }
    }
}

void FileWriter::writeObject(int number, const Handle& object, const StoredStreams& streams) {
    if (Handle(object).isStream()) {
        writeStream(number, object, streams);
        return;
    }
    beginPacked(number);
    m_packedText.addContent(object);
    endPacked();
}

void FileWriter::beginPart() {
    m_numbers.beginPart();
}

void FileWriter::writeReserved(int number, const Handle& object) {
    writeObject(number, object, {});
}

void FileWriter::writeReserved(int number, std::string_view text) {
    beginPacked(number);
    m_packedText.add(text);
    endPacked();
}

void FileWriter::writeReserved(int number, std::string_view entries, std::string_view data, Packing packing) {
    const std::string compressed = packing == Packing::compress ? deflated(data) : std::string();
    if (packing == Packing::compress)
        data = compressed;
    beginStream(number);
    m_streamText.add("<<");
    if (!entries.empty())
        m_streamText.add(entries);
    m_streamText.add(packing == Packing::compress ? "/Filter/FlateDecode/Length" : "/Length");
    m_streamText.add(std::to_string(data.size()));
    m_streamText.add(">>");
    endStream(data);
}

void FileWriter::finish(int catalogNumber) {
    writePackedObjects();
    writeCrossReferences(catalogNumber);
    flush();
}

void FileWriter::writeStream(int number, Handle stream, const StoredStreams& streams) {
    Entries entries = stream.getDict().getDictAsMap();
    const auto stored = streams.find(stream);
    const bool isCompressed = isToBeCompressed(stream) && (!stored || stored->length <= largestToCompress);
    if (stored && !isCompressed) {
        writeStreamObject(number, std::move(entries), stored->bytes());
        return;
    }
    std::string data;
    Pl_String receiver("stream", nullptr, data);
    stream.pipeStreamData(&receiver, nullptr, 0, qpdf_dl_none);
    if (isCompressed) {
        data = deflated(data);
        entries["/Filter"] = Handle::newName("/FlateDecode");
        entries.erase("/DecodeParms");
    }
    writeStreamObject(number, std::move(entries), data);
}

void FileWriter::writeStreamObject(int number, Entries entries, std::string_view data) {
    entries["/Length"] = Handle::newInteger(static_cast<long long>(data.size()));
    beginStream(number);
    m_streamText.addDictionary(entries);
    endStream(data);
}

void FileWriter::writeCopiedStream(int number, const CopiedText& stream) {
    beginStream(number);
    m_streamText.add("<<");
    m_streamText.add(stream);
    m_streamText.add("/Length");
    m_streamText.add(std::to_string(stream.data->length));
    m_streamText.add(">>");
    endStream(stream.data->bytes());
}

void FileWriter::beginStream(int number) {
    m_places.set(number, {m_position, 0, 0});
    m_streamText.clear();
    m_streamText.add(std::to_string(number));
    m_streamText.add("0");
    m_streamText.add("obj");
}

void FileWriter::endStream(std::string_view data) {
    m_streamText.add("stream\n");
    put(m_streamText.text());
    put(data);
    put("\nendstream\nendobj\n");
}

void FileWriter::beginPacked(int number) {
    m_packedNumbers.push_back(number);
    m_packedPlaces.push_back(m_packedText.text().size());
}

void FileWriter::endPacked() {
    if (m_packedNumbers.size() == objectsInStream)
        writePackedObjects();
}

void FileWriter::writePackedObjects() {
    if (m_packedNumbers.empty())
        return;
    const int container = m_numbers.reserve();
    std::string data;
    for (size_t i = 0; i < m_packedNumbers.size(); ++i) {
        data += std::to_string(m_packedNumbers[i]) + ' ' + std::to_string(m_packedPlaces[i]) + ' ';
        m_places.set(m_packedNumbers[i], {m_position, container, static_cast<int>(i)});
    }
    const std::string entries = "/First " + std::to_string(data.size()) + "/N " +
                                std::to_string(m_packedNumbers.size()) + "/Type/ObjStm";
    data += m_packedText.text();
    writeReserved(container, entries, data, Packing::compress);
    m_packedNumbers.clear();
    m_packedPlaces.clear();
    m_packedText.clear();
}

void FileWriter::writeCrossReferences(int catalogNumber) {
    const Trailer trailer{std::to_string(catalogNumber) + " 0 R", {}, newIdentifier()};
    put(std::move(m_places).end(trailer, m_position));
}

void FileWriter::put(std::string_view bytes) {
    if (m_block.size() + bytes.size() > blockSize || bytes.size() >= largeSize)
        flush();
    if (bytes.size() >= largeSize)
        m_consumer.write(bytes.data(), static_cast<qint64>(bytes.size()));
    else
        m_block += bytes;
    m_position += bytes.size();
}

void FileWriter::flush() {
    if (!m_block.empty())
        m_consumer.write(m_block.data(), static_cast<qint64>(m_block.size()));
    m_block.clear();
}

}  // namespace vellmora
