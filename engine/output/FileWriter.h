#pragma once

#include "engine/objects/ObjectPlaces.h"
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
    /// `streams` knows where the sources have the bytes of those streams that were carried over.
    FileWriter(const StoredStreams& streams, PDFDataConsumer& consumer);

    /// Writes all that can be reached from the catalogue. The consumer is not finished yet. Throws what it
    /// throws, and what the sources do that cannot be read any more.
    void write(const QPDFObjectHandle& catalog);

private:
    void writeStream(int number, QPDFObjectHandle stream);
    void writeStreamObject(int number, std::map<std::string, QPDFObjectHandle> entries,
                           std::string_view data);
    void pack(int number, const QPDFObjectHandle& object);
    void writePackedObjects();
    void writeCrossReferences(int catalogNumber);

    void put(std::string_view bytes);
    void flush();

    const StoredStreams& m_streams;
    PDFDataConsumer& m_consumer;
    std::string m_block;  ///< not handed over yet
    size_t m_position = 0;

    ObjectNumbers m_numbers;
    ObjectText m_streamText;
    ObjectText m_packedText;
    std::vector<size_t> m_packedPlaces;
    std::vector<int> m_packedNumbers;
    ObjectPlaces m_places;
};

}  // namespace vellmora
