#pragma once

#include "engine/objects/CrossReferences.h"
#include "engine/output/CopiedText.h"
#include "engine/output/ObjectText.h"
#include "engine/output/StoredStreams.h"
#include "pdf/PDFDataConsumer.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace vellmora {

/// Writes a PDF file (ISO 32000-2, 7.5): streams as they are, all other objects packed into object streams,
/// and a cross-reference stream. The bytes of a source's streams go from its memory to the consumer without
/// being copied or looked at in between, which is most of a file.
class FileWriter {
public:
    explicit FileWriter(PDFDataConsumer& consumer);

    /// The numbers of the objects. What has one is written.
    ObjectNumbers& numbers() { return m_numbers; }
    /// Writes all that can be reached from the objects that have a number, and is not written yet. `streams`
    /// knows where the sources have the bytes of those streams that were carried over, `texts` which objects
    /// are in words already. Throws what the consumer throws, and what the sources do that cannot be read any
    /// more.
    void writeObjects(const StoredStreams& streams, const CopiedTexts& texts);
    /// The objects are those of another output from now on. Those of the last one are written.
    void beginPart();
    /// An object for a number that was reserved. What it refers to is not written yet then.
    void writeReserved(int number, const QPDFObjectHandle& object);
    /// The same in words.
    void writeReserved(int number, std::string_view text);
    /// A stream: the words of its entries but for those that say how long it is and, where it is not
    /// compressed yet, how it is then.
    void writeReserved(int number, std::string_view entries, std::string_view data, Packing packing);
    /// All is written. The consumer is not finished yet.
    void finish(int catalogNumber);

private:
    void writeStream(int number, QPDFObjectHandle stream, const StoredStreams& streams);
    void writeStreamObject(int number, std::map<std::string, QPDFObjectHandle> entries,
                           std::string_view data);
    void writeCopiedStream(int number, const CopiedText& stream);
    void beginStream(int number);
    void endStream(std::string_view data);
    void beginPacked(int number);
    void endPacked();
    void writeObject(int number, const QPDFObjectHandle& object, const StoredStreams& streams);
    void writePackedObjects();
    void writeCrossReferences(int catalogNumber);

    void put(std::string_view bytes);
    void flush();

    PDFDataConsumer& m_consumer;
    std::string m_block;  ///< not handed over yet
    size_t m_position = 0;

    ObjectNumbers m_numbers;
    ObjectText m_streamText;
    ObjectText m_packedText;
    std::vector<size_t> m_packedPlaces;
    std::vector<int> m_packedNumbers;
    PlaceTable m_places;
};

}  // namespace vellmora
