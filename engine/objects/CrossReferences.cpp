#include "engine/objects/CrossReferences.h"

#include "picture/DeflateStream.h"

namespace vellmora {

namespace {

/// How many bytes an entry has of a place.
struct Widths {
    int position;  ///< or the object stream's number
    int detail;

    size_t entry() const { return 1 + static_cast<size_t>(position) + static_cast<size_t>(detail); }
};

/// Positions up to a million million.
constexpr Widths widthsInTable{5, 1};

/// The greatest byte first.
char* write(char* target, size_t value, int bytes) {
    for (int shift = 8 * (bytes - 1); shift >= 0; shift -= 8)
        *target++ = static_cast<char>(value >> shift);
    return target;
}

void writeEntry(char* target, const ObjectPlace& place, const Widths& widths) {
    const bool isMember = place.container != 0;
    target = write(target, isMember ? 2 : 1, 1);
    target = write(target, isMember ? static_cast<size_t>(place.container) : place.position, widths.position);
    write(target, static_cast<size_t>(place.detail), widths.detail);
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

std::string streamOf(const std::string& entries, const Widths& widths, const std::string& runs,
                     const Trailer& trailer, size_t position, int ownNumber) {
    const std::string data = deflated(entries);
    return std::to_string(ownNumber) + " 0 obj\n<</Type/XRef/Filter/FlateDecode/W[1 " +
           std::to_string(widths.position) + ' ' + std::to_string(widths.detail) + "]/Index[" + runs + "]\n" +
           entry("/Root", trailer.root) + entry("/Encrypt", trailer.encrypt) + entry("/ID", trailer.id) +
           "/Size " + std::to_string(ownNumber + 1) + "/Length " + std::to_string(data.size()) +
           ">>\nstream\n" + data + "\nendstream\nendobj\nstartxref\n" + std::to_string(position) +
           "\n%%EOF\n";
}

}  // namespace

std::string crossReferences(ObjectPlaces places, const Trailer& trailer, size_t position, int ownNumber) {
    places[ownNumber] = {position, 0, 0};
    const Widths widths{bytesFor(position), 4};
    std::string entries(places.size() * widths.entry(), '\0');
    size_t at = 0;
    for (const auto& [number, place] : places) {
        writeEntry(&entries[at], place, widths);
        at += widths.entry();
    }
    return streamOf(entries, widths, runsOf(places), trailer, position, ownNumber);
}

void PlaceTable::set(int number, const ObjectPlace& place) {
    const size_t end = static_cast<size_t>(number) * widthsInTable.entry();
    if (end > m_entries.size())
        m_entries.resize(end);
    writeEntry(&m_entries[end - widthsInTable.entry()], place, widthsInTable);
}

std::string PlaceTable::end(const Trailer& trailer, size_t position) && {
    const auto ownNumber = static_cast<int>(m_entries.size() / widthsInTable.entry()) + 1;
    set(ownNumber, {position, 0, 0});
    return streamOf(m_entries, widthsInTable, "1 " + std::to_string(ownNumber) + ' ', trailer, position,
                    ownNumber);
}

}  // namespace vellmora
