#include "platform/pdf/CrossReferences.h"

namespace vellmora {

namespace {

constexpr int positionBytes = 8;
constexpr int detailBytes = 4;

void appendNumber(std::string& data, size_t value, int bytes) {
    for (int shift = 8 * (bytes - 1); shift >= 0; shift -= 8)
        data += static_cast<char>(value >> shift);
}

std::string entry(const char* key, const std::string& value) {
    return value.empty() ? std::string() : std::string(key) + ' ' + value + '\n';
}

}  // namespace

std::string crossReferences(ObjectPlaces places, const Trailer& trailer, size_t position) {
    const int ownNumber = places.empty() ? 1 : places.rbegin()->first + 1;
    places[ownNumber] = {position, 0, 0};
    std::string index;
    std::string data;
    for (const auto& [number, place] : places) {
        const bool isMember = place.container != 0;
        index += std::to_string(number) + " 1 ";
        appendNumber(data, isMember ? 2 : 1, 1);
        appendNumber(data, isMember ? static_cast<size_t>(place.container) : place.position, positionBytes);
        appendNumber(data, static_cast<size_t>(place.detail), detailBytes);
    }
    return std::to_string(ownNumber) + " 0 obj\n<< /Type /XRef /W [1 " + std::to_string(positionBytes) + ' ' +
           std::to_string(detailBytes) + "] /Index [" + index + "]\n" + entry("/Root", trailer.root) +
           entry("/Encrypt", trailer.encrypt) + entry("/ID", trailer.id) + "/Size " +
           std::to_string(ownNumber + 1) + " /Length " + std::to_string(data.size()) + " >>\nstream\n" +
           data + "\nendstream\nendobj\nstartxref\n" + std::to_string(position) + "\n%%EOF\n";
}

}  // namespace vellmora
