#include "engine/objects/CrossReferences.h"

#include "picture/DeflateStream.h"

namespace vellmora {

namespace {

constexpr int detailBytes = 4;

void appendNumber(std::string& data, size_t value, int bytes) {
    for (int shift = 8 * (bytes - 1); shift >= 0; shift -= 8)
        data += static_cast<char>(value >> shift);
}

/// Bytes that hold every position up to the last.
int bytesFor(size_t last) {
    int bytes = 4;
    while (bytes < 8 && last >> (8 * bytes) != 0)
        ++bytes;
    return bytes;
}

std::string entry(const char* key, const std::string& value) {
    return value.empty() ? std::string() : std::string(key) + ' ' + value + '\n';
}

/// First number and count of each run of numbers without a gap.
std::string runsOf(const ObjectPlaces& places) {
    std::string runs;
    for (auto place = places.begin(); place != places.end();) {
        const int first = place->first;
        int next = first;
        for (; place != places.end() && place->first == next; ++place)
            ++next;
        runs += std::to_string(first) + ' ' + std::to_string(next - first) + ' ';
    }
    return runs;
}

/// The entries of the stream, one after another.
class Entries {
public:
    explicit Entries(size_t position) : m_positionBytes(bytesFor(position)) {}

    void add(const ObjectPlace& place) {
        const bool isMember = place.container != 0;
        appendNumber(m_data, isMember ? 2 : 1, 1);
        appendNumber(m_data, isMember ? static_cast<size_t>(place.container) : place.position,
                     m_positionBytes);
        appendNumber(m_data, static_cast<size_t>(place.detail), detailBytes);
    }

    std::string stream(const std::string& runs, const Trailer& trailer, size_t position,
                       int ownNumber) const {
        const std::string data = deflated(m_data);
        return std::to_string(ownNumber) + " 0 obj\n<</Type/XRef/Filter/FlateDecode/W[1 " +
               std::to_string(m_positionBytes) + ' ' + std::to_string(detailBytes) + "]/Index[" + runs +
               "]\n" + entry("/Root", trailer.root) + entry("/Encrypt", trailer.encrypt) +
               entry("/ID", trailer.id) + "/Size " + std::to_string(ownNumber + 1) + "/Length " +
               std::to_string(data.size()) + ">>\nstream\n" + data + "\nendstream\nendobj\nstartxref\n" +
               std::to_string(position) + "\n%%EOF\n";
    }

private:
    int m_positionBytes;
    std::string m_data;
};

}  // namespace

std::string crossReferences(ObjectPlaces places, const Trailer& trailer, size_t position, int ownNumber) {
    places[ownNumber] = {position, 0, 0};
    Entries entries(position);
    for (const auto& [number, place] : places)
        entries.add(place);
    return entries.stream(runsOf(places), trailer, position, ownNumber);
}

std::string crossReferences(const std::vector<ObjectPlace>& places, const Trailer& trailer, size_t position) {
    Entries entries(position);
    for (const ObjectPlace& place : places)
        entries.add(place);
    entries.add({position, 0, 0});
    const auto ownNumber = static_cast<int>(places.size()) + 1;
    return entries.stream("1 " + std::to_string(ownNumber) + ' ', trailer, position, ownNumber);
}

}  // namespace vellmora
