#include "engine/fonts/GlyphNames.h"

#include "engine/fonts/StandardGlyphs.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <utility>

namespace vellmora {

namespace {

struct NamedCharacter {
    char16_t character;
    std::string_view name;
};

// Latin and Greek beyond the standard set.
constexpr auto furtherNames = std::to_array<NamedCharacter>({{0x00A0, "nbspace"},
                                                             {0x00AD, "sfthyphen"},
                                                             {0x00B7, "middot"},
                                                             {0x0100, "Amacron"},
                                                             {0x0101, "amacron"},
                                                             {0x0102, "Abreve"},
                                                             {0x0103, "abreve"},
                                                             {0x0104, "Aogonek"},
                                                             {0x0105, "aogonek"},
                                                             {0x0106, "Cacute"},
                                                             {0x0107, "cacute"},
                                                             {0x0108, "Ccircumflex"},
                                                             {0x0109, "ccircumflex"},
                                                             {0x010A, "Cdot"},
                                                             {0x010A, "Cdotaccent"},
                                                             {0x010B, "cdot"},
                                                             {0x010B, "cdotaccent"},
                                                             {0x010C, "Ccaron"},
                                                             {0x010D, "ccaron"},
                                                             {0x010E, "Dcaron"},
                                                             {0x010F, "dcaron"},
                                                             {0x0110, "Dcroat"},
                                                             {0x0110, "Dslash"},
                                                             {0x0111, "dcroat"},
                                                             {0x0111, "dmacron"},
                                                             {0x0112, "Emacron"},
                                                             {0x0113, "emacron"},
                                                             {0x0114, "Ebreve"},
                                                             {0x0115, "ebreve"},
                                                             {0x0116, "Edot"},
                                                             {0x0116, "Edotaccent"},
                                                             {0x0117, "edot"},
                                                             {0x0117, "edotaccent"},
                                                             {0x0118, "Eogonek"},
                                                             {0x0119, "eogonek"},
                                                             {0x011A, "Ecaron"},
                                                             {0x011B, "ecaron"},
                                                             {0x011C, "Gcircumflex"},
                                                             {0x011D, "gcircumflex"},
                                                             {0x011E, "Gbreve"},
                                                             {0x011F, "gbreve"},
                                                             {0x0120, "Gdot"},
                                                             {0x0120, "Gdotaccent"},
                                                             {0x0121, "gdot"},
                                                             {0x0121, "gdotaccent"},
                                                             {0x0122, "Gcedilla"},
                                                             {0x0122, "Gcommaaccent"},
                                                             {0x0123, "gcedilla"},
                                                             {0x0123, "gcommaaccent"},
                                                             {0x0124, "Hcircumflex"},
                                                             {0x0125, "hcircumflex"},
                                                             {0x0126, "Hbar"},
                                                             {0x0127, "hbar"},
                                                             {0x0128, "Itilde"},
                                                             {0x0129, "itilde"},
                                                             {0x012A, "Imacron"},
                                                             {0x012B, "imacron"},
                                                             {0x012C, "Ibreve"},
                                                             {0x012D, "ibreve"},
                                                             {0x012E, "Iogonek"},
                                                             {0x012F, "iogonek"},
                                                             {0x0130, "Idot"},
                                                             {0x0130, "Idotaccent"},
                                                             {0x0132, "IJ"},
                                                             {0x0133, "ij"},
                                                             {0x0134, "Jcircumflex"},
                                                             {0x0135, "jcircumflex"},
                                                             {0x0136, "Kcedilla"},
                                                             {0x0136, "Kcommaaccent"},
                                                             {0x0137, "kcedilla"},
                                                             {0x0137, "kcommaaccent"},
                                                             {0x0138, "kgreenlandic"},
                                                             {0x0139, "Lacute"},
                                                             {0x013A, "lacute"},
                                                             {0x013B, "Lcedilla"},
                                                             {0x013B, "Lcommaaccent"},
                                                             {0x013C, "lcedilla"},
                                                             {0x013C, "lcommaaccent"},
                                                             {0x013D, "Lcaron"},
                                                             {0x013E, "lcaron"},
                                                             {0x013F, "Ldot"},
                                                             {0x0140, "ldot"},
                                                             {0x0143, "Nacute"},
                                                             {0x0144, "nacute"},
                                                             {0x0145, "Ncedilla"},
                                                             {0x0145, "Ncommaaccent"},
                                                             {0x0146, "ncedilla"},
                                                             {0x0146, "ncommaaccent"},
                                                             {0x0147, "Ncaron"},
                                                             {0x0148, "ncaron"},
                                                             {0x0149, "napostrophe"},
                                                             {0x014A, "Eng"},
                                                             {0x014B, "eng"},
                                                             {0x014C, "Omacron"},
                                                             {0x014D, "omacron"},
                                                             {0x014E, "Obreve"},
                                                             {0x014F, "obreve"},
                                                             {0x0150, "Odblacute"},
                                                             {0x0150, "Ohungarumlaut"},
                                                             {0x0151, "odblacute"},
                                                             {0x0151, "ohungarumlaut"},
                                                             {0x0154, "Racute"},
                                                             {0x0155, "racute"},
                                                             {0x0156, "Rcedilla"},
                                                             {0x0156, "Rcommaaccent"},
                                                             {0x0157, "rcedilla"},
                                                             {0x0157, "rcommaaccent"},
                                                             {0x0158, "Rcaron"},
                                                             {0x0159, "rcaron"},
                                                             {0x015A, "Sacute"},
                                                             {0x015B, "sacute"},
                                                             {0x015C, "Scircumflex"},
                                                             {0x015D, "scircumflex"},
                                                             {0x015E, "Scedilla"},
                                                             {0x015F, "scedilla"},
                                                             {0x0162, "Tcedilla"},
                                                             {0x0162, "Tcommaaccent"},
                                                             {0x0163, "tcedilla"},
                                                             {0x0163, "tcommaaccent"},
                                                             {0x0164, "Tcaron"},
                                                             {0x0165, "tcaron"},
                                                             {0x0166, "Tbar"},
                                                             {0x0167, "tbar"},
                                                             {0x0168, "Utilde"},
                                                             {0x0169, "utilde"},
                                                             {0x016A, "Umacron"},
                                                             {0x016B, "umacron"},
                                                             {0x016C, "Ubreve"},
                                                             {0x016D, "ubreve"},
                                                             {0x016E, "Uring"},
                                                             {0x016F, "uring"},
                                                             {0x0170, "Udblacute"},
                                                             {0x0170, "Uhungarumlaut"},
                                                             {0x0171, "udblacute"},
                                                             {0x0171, "uhungarumlaut"},
                                                             {0x0172, "Uogonek"},
                                                             {0x0173, "uogonek"},
                                                             {0x0174, "Wcircumflex"},
                                                             {0x0175, "wcircumflex"},
                                                             {0x0176, "Ycircumflex"},
                                                             {0x0177, "ycircumflex"},
                                                             {0x0179, "Zacute"},
                                                             {0x017A, "zacute"},
                                                             {0x017B, "Zdot"},
                                                             {0x017B, "Zdotaccent"},
                                                             {0x017C, "zdot"},
                                                             {0x017C, "zdotaccent"},
                                                             {0x017F, "longs"},
                                                             {0x01FA, "Aringacute"},
                                                             {0x01FB, "aringacute"},
                                                             {0x01FC, "AEacute"},
                                                             {0x01FD, "aeacute"},
                                                             {0x01FE, "Oslashacute"},
                                                             {0x01FF, "oslashacute"},
                                                             {0x0218, "Scommaaccent"},
                                                             {0x0219, "scommaaccent"},
                                                             {0x0384, "tonos"},
                                                             {0x0385, "dieresistonos"},
                                                             {0x0386, "Alphatonos"},
                                                             {0x0388, "Epsilontonos"},
                                                             {0x0389, "Etatonos"},
                                                             {0x038A, "Iotatonos"},
                                                             {0x038C, "Omicrontonos"},
                                                             {0x038E, "Upsilontonos"},
                                                             {0x038F, "Omegatonos"},
                                                             {0x0390, "iotadieresistonos"},
                                                             {0x0391, "Alpha"},
                                                             {0x0392, "Beta"},
                                                             {0x0393, "Gamma"},
                                                             {0x0394, "Delta"},
                                                             {0x0395, "Epsilon"},
                                                             {0x0396, "Zeta"},
                                                             {0x0397, "Eta"},
                                                             {0x0398, "Theta"},
                                                             {0x0399, "Iota"},
                                                             {0x039A, "Kappa"},
                                                             {0x039B, "Lambda"},
                                                             {0x039C, "Mu"},
                                                             {0x039D, "Nu"},
                                                             {0x039E, "Xi"},
                                                             {0x039F, "Omicron"},
                                                             {0x03A0, "Pi"},
                                                             {0x03A1, "Rho"},
                                                             {0x03A3, "Sigma"},
                                                             {0x03A4, "Tau"},
                                                             {0x03A5, "Upsilon"},
                                                             {0x03A6, "Phi"},
                                                             {0x03A7, "Chi"},
                                                             {0x03A8, "Psi"},
                                                             {0x03A9, "Omega"},
                                                             {0x03AA, "Iotadieresis"},
                                                             {0x03AB, "Upsilondieresis"},
                                                             {0x03AC, "alphatonos"},
                                                             {0x03AD, "epsilontonos"},
                                                             {0x03AE, "etatonos"},
                                                             {0x03AF, "iotatonos"},
                                                             {0x03B0, "upsilondieresistonos"},
                                                             {0x03B1, "alpha"},
                                                             {0x03B2, "beta"},
                                                             {0x03B3, "gamma"},
                                                             {0x03B4, "delta"},
                                                             {0x03B5, "epsilon"},
                                                             {0x03B6, "zeta"},
                                                             {0x03B7, "eta"},
                                                             {0x03B8, "theta"},
                                                             {0x03B9, "iota"},
                                                             {0x03BA, "kappa"},
                                                             {0x03BB, "lambda"},
                                                             {0x03BD, "nu"},
                                                             {0x03BE, "xi"},
                                                             {0x03BF, "omicron"},
                                                             {0x03C0, "pi"},
                                                             {0x03C1, "rho"},
                                                             {0x03C2, "sigma1"},
                                                             {0x03C3, "sigma"},
                                                             {0x03C4, "tau"},
                                                             {0x03C5, "upsilon"},
                                                             {0x03C6, "phi"},
                                                             {0x03C7, "chi"},
                                                             {0x03C8, "psi"},
                                                             {0x03C9, "omega"},
                                                             {0x03CA, "iotadieresis"},
                                                             {0x03CB, "upsilondieresis"},
                                                             {0x03CC, "omicrontonos"},
                                                             {0x03CD, "upsilontonos"},
                                                             {0x03CE, "omegatonos"},
                                                             {0x03D1, "theta1"},
                                                             {0x03D5, "phi1"},
                                                             {0x03D6, "omega1"},
                                                             {0x1E80, "Wgrave"},
                                                             {0x1E81, "wgrave"},
                                                             {0x1E82, "Wacute"},
                                                             {0x1E83, "wacute"},
                                                             {0x1E84, "Wdieresis"},
                                                             {0x1E85, "wdieresis"},
                                                             {0x1EF2, "Ygrave"},
                                                             {0x1EF3, "ygrave"},
                                                             {0x2010, "hyphentwo"},
                                                             {0x2017, "underscoredbl"},
                                                             {0x201B, "quotereversed"},
                                                             {0x2032, "minute"},
                                                             {0x2033, "second"},
                                                             {0x203C, "exclamdbl"},
                                                             {0x2070, "zerosuperior"},
                                                             {0x2074, "foursuperior"},
                                                             {0x2075, "fivesuperior"},
                                                             {0x2076, "sixsuperior"},
                                                             {0x2077, "sevensuperior"},
                                                             {0x2078, "eightsuperior"},
                                                             {0x2079, "ninesuperior"},
                                                             {0x207F, "nsuperior"},
                                                             {0x20A3, "franc"},
                                                             {0x20A4, "lira"},
                                                             {0x20A7, "peseta"},
                                                             {0x2126, "Ohm"},
                                                             {0x2260, "notequal"},
                                                             {0x2264, "lessequal"},
                                                             {0x2265, "greaterequal"},
                                                             {0xFB00, "ff"},
                                                             {0xFB03, "ffi"},
                                                             {0xFB04, "ffl"}});

/// Cyrillic letters have numbers; each row is a stretch of them.
struct NumberedLetters {
    int first;
    int last;
    char16_t character;  ///< of the first
};
constexpr auto cyrillicLetters = std::to_array<NumberedLetters>({{10017, 10022, 0x0410},
                                                                 {10023, 10023, 0x0401},
                                                                 {10024, 10049, 0x0416},
                                                                 {10050, 10050, 0x0490},
                                                                 {10051, 10061, 0x0402},
                                                                 {10062, 10062, 0x040E},
                                                                 {10065, 10070, 0x0430},
                                                                 {10071, 10071, 0x0451},
                                                                 {10072, 10097, 0x0436},
                                                                 {10098, 10098, 0x0491},
                                                                 {10099, 10109, 0x0452},
                                                                 {10110, 10110, 0x045E},
                                                                 {10145, 10145, 0x040F},
                                                                 {10193, 10193, 0x045F}});

std::optional<int> number(std::string_view digits, int base) {
    int value = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value, base);
    const bool isWhole = error == std::errc() && end == digits.data() + digits.size();
    return isWhole && value >= 0 ? std::optional(value) : std::nullopt;
}

/// "uni" and four digits, "u" and four to six.
char32_t byCodePoint(std::string_view name) {
    const size_t start = name.starts_with("uni") && name.size() == 7 ? 3 : 1;
    const bool isMeant = start == 3 || (name.starts_with("u") && name.size() >= 5 && name.size() <= 7);
    const auto value = isMeant ? number(name.substr(start), 16) : std::nullopt;
    return value && *value <= 0x10FFFF ? static_cast<char32_t>(*value) : 0;
}

char32_t cyrillicLetter(std::string_view name) {
    const auto value = name.starts_with("afii") ? number(name.substr(4), 10) : std::nullopt;
    for (const NumberedLetters& letters : cyrillicLetters) {
        if (value && *value >= letters.first && *value <= letters.last)
            return static_cast<char32_t>(letters.character) + static_cast<char32_t>(*value - letters.first);
    }
    return 0;
}

}  // namespace

char32_t characterOfGlyph(std::string_view name) {
    name = name.substr(0, name.find('.', 1));  // what follows is a variant of the glyph
    if (const StandardGlyph* glyph = standardGlyph(name))
        return glyph->character;
    const auto place = std::find_if(furtherNames.begin(), furtherNames.end(),
                                    [&](const NamedCharacter& named) { return named.name == name; });
    if (place != furtherNames.end())
        return place->character;
    const char32_t letter = cyrillicLetter(name);
    return letter != 0 ? letter : byCodePoint(name);
}

}  // namespace vellmora
