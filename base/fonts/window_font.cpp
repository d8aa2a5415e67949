// Makes a font of the window from one of the family's, when the program is built.
//
//   window_font IN.ttf OUT.ttf
//
// The family's lines end below the accents of capitals, and ask for a gap between them instead. With the gap
// put on top of the line (OpenType, "OS/2"), no accent is cut off where a text has its line and no more. The
// font gets a family name of its own, as its license wants: where the system has the family installed, the
// toolkit would take some weights from there. Exit codes: 0 done, 1 wrong arguments, 2 no such font, 3 it
// cannot be written.

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>

namespace {

constexpr size_t headerSize = 12;
constexpr size_t recordSize = 16;
constexpr size_t nameRecordSize = 12;
constexpr size_t typoAscender = 68;
constexpr size_t typoLineGap = 72;

unsigned byteAt(const std::string& font, size_t place) {
    return static_cast<unsigned char>(font.at(place));
}

unsigned shortAt(const std::string& font, size_t place) {
    return byteAt(font, place) << 8 | byteAt(font, place + 1);
}

void setShort(std::string& font, size_t place, unsigned value) {
    font.at(place) = static_cast<char>(value >> 8 & 0xFF);
    font.at(place + 1) = static_cast<char>(value & 0xFF);
}

/// Where a table begins (OpenType, "Table directory"). Throws `std::out_of_range` where the font has none of
/// this name.
size_t tableStart(const std::string& font, const char* name) {
    const size_t count = shortAt(font, 4);
    for (size_t record = headerSize; record < headerSize + count * recordSize; record += recordSize) {
        if (font.compare(record, 4, name) == 0)
            return size_t{shortAt(font, record + 8)} << 16 | shortAt(font, record + 10);
    }
    throw std::out_of_range(name);
}

void makeRoomForAccents(std::string& font) {
    const size_t table = tableStart(font, "OS/2");
    // Numbers with a sign: their sum is the same without one.
    const unsigned ascent = shortAt(font, table + typoAscender) + shortAt(font, table + typoLineGap);
    setShort(font, table + typoAscender, ascent);
    setShort(font, table + typoLineGap, 0);
}

/// Of a name that tells fonts apart, and none that tells who made it (OpenType, "name").
bool isOfFamily(unsigned id) {
    constexpr std::array ids{1U, 3U, 4U, 6U, 16U, 18U};
    return std::find(ids.begin(), ids.end(), id) != ids.end();
}

/// Letters are of one byte on the first platform, of two on others.
std::string inBytes(std::string_view word, unsigned platform) {
    std::string bytes;
    for (const char letter : word)
        bytes += platform == 1 ? std::string{letter} : std::string{'\0', letter};
    return bytes;
}

/// Both names have the same length, so that nothing moves.
void rename(std::string& font, std::string_view from, std::string_view to) {
    const size_t table = tableStart(font, "name");
    const size_t texts = table + shortAt(font, table + 4);
    for (unsigned i = 0; i < shortAt(font, table + 2); ++i) {
        const size_t record = table + 6 + i * nameRecordSize;
        const unsigned platform = shortAt(font, record);
        const size_t start = texts + shortAt(font, record + 10);
        const size_t end = start + shortAt(font, record + 8);
        const std::string old = inBytes(from, platform);
        if (!isOfFamily(shortAt(font, record + 6)))
            continue;
        for (size_t at = font.find(old, start); at < end; at = font.find(old, at))
            font.replace(at, old.size(), inBytes(to, platform));
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3)
        return 1;
    std::ifstream in(argv[1], std::ios::binary);
    std::string font{std::istreambuf_iterator<char>(in), {}};
    try {
        makeRoomForAccents(font);
        rename(font, "Lato", "Vell");
    } catch (const std::out_of_range&) {
        return 2;
    }
    std::ofstream out(argv[2], std::ios::binary);
    out << font;
    out.close();
    return out ? 0 : 3;
}
