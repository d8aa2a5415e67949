#include "engine/file/PartialData.h"

#include <algorithm>
#include <array>
#include <limits>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include <qpdf/Pl_Concatenate.hh>
#include <qpdf/Pl_Count.hh>
#include <qpdf/Pl_String.hh>
#include <zlib.h>

namespace vellmora {

namespace {

enum class Predictor { none, known, odd };

Predictor predictorOf(QPDFObjectHandle stream) {
    QPDFObjectHandle parameters = stream.getDict().getKey("/DecodeParms");
    if (parameters.isArray() && parameters.getArrayNItems() == 1)
        parameters = parameters.getArrayItem(0);
    const auto isWithin = [&](const char* key, long long usual, long long least, long long most) {
        QPDFObjectHandle value = parameters.getKey(key);
        const long long number = value.isInteger() ? value.getIntValue() : usual;
        return number >= least && number <= most;
    };
    if (!parameters.isDictionary() || isWithin("/Predictor", 1, 1, 1))
        return Predictor::none;
    // ISO 32000-2, tables 8 and 10. libqpdf 11 takes 255 colours, libqpdf 12 any number of them.
    const bool isKnown = (isWithin("/Predictor", 1, 2, 2) || isWithin("/Predictor", 1, 10, 15)) &&
                         isWithin("/Colors", 1, 1, 255) && isWithin("/BitsPerComponent", 8, 1, 16) &&
                         isWithin("/Columns", 1, 1, std::numeric_limits<int>::max());
    return isKnown ? Predictor::known : Predictor::odd;
}

/// How far libqpdf gets: not at all where it does not understand a filter or its parameters.
enum class Decoding { whole, partial, none };

/// `delivered` counts the bytes of which the target knows.
Decoding pipeDecoded(QPDFObjectHandle stream, Pipeline& target, size_t& delivered) {
    if (predictorOf(stream) == Predictor::odd)
        return Decoding::none;
    Pl_Concatenate unfinished("decoded", &target);
    Pl_Count count("decoded", &unfinished);
    bool isDecoded = false;
    Decoding result = Decoding::none;
    try {
        if (stream.pipeStreamData(nullptr, &isDecoded, 0, qpdf_dl_specialized)) {
            const bool isWhole = stream.pipeStreamData(&count, &isDecoded, 0, qpdf_dl_specialized);
            result = isWhole && isDecoded ? Decoding::whole : Decoding::partial;
        }
    } catch (const std::runtime_error&) {
        result = Decoding::none;  // a filter was given parameters that it does not know
    }
    delivered = static_cast<size_t>(count.getCount());
    return result;
}

std::vector<std::string> filtersOf(QPDFObjectHandle stream) {
    QPDFObjectHandle filter = stream.getDict().getKey("/Filter");
    std::vector<std::string> names;
    const auto add = [&names](QPDFObjectHandle name) {
        names.push_back(name.isName() ? name.getName() : "");
    };
    if (filter.isArray()) {
        for (const QPDFObjectHandle& item : filter.aitems())
            add(item);
    } else {
        add(filter);
    }
    return names;
}

bool isFlateOnly(const std::vector<std::string>& filters) {
    return filters.size() == 1 && (filters[0] == "/FlateDecode" || filters[0] == "/Fl");
}

/// Whether one of the filters is unknown or only for pictures: what it delivers is no content for anybody.
bool isNoContent(const std::vector<std::string>& filters) {
    static constexpr std::array known{"/FlateDecode",     "/Fl",  "/LZWDecode",      "/LZW",
                                      "/ASCII85Decode",   "/A85", "/ASCIIHexDecode", "/AHx",
                                      "/RunLengthDecode", "/RL",  "/Crypt"};
    return std::any_of(filters.begin(), filters.end(), [](const std::string& filter) {
        return std::find(known.begin(), known.end(), filter) == known.end();
    });
}

/// Unpacks up to the first error, without the first bytes.
void inflateBehind(const std::string& data, size_t toSkip, Pipeline& target) {
    z_stream stream{};
    if (::inflateInit(&stream) != Z_OK)
        throw std::bad_alloc();
    std::array<Bytef, 1 << 16> block;
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(data.data()));
    stream.avail_in = static_cast<uInt>(std::min<size_t>(data.size(), std::numeric_limits<uInt>::max()));
    int status = Z_OK;
    while (status == Z_OK) {
        stream.next_out = block.data();
        stream.avail_out = block.size();
        status = ::inflate(&stream, Z_SYNC_FLUSH);
        const size_t count = block.size() - stream.avail_out;
        const size_t skipped = std::min(count, toSkip);
        toSkip -= skipped;
        try {
            target.write(block.data() + skipped, count - skipped);
        } catch (...) {
            ::inflateEnd(&stream);
            throw;
        }
    }
    ::inflateEnd(&stream);
}

}  // namespace

bool pipeAsFarAsPossible(QPDFObjectHandle stream, Pipeline& target) {
    size_t delivered = 0;
    const Decoding decoding = pipeDecoded(stream, target, delivered);
    if (decoding == Decoding::whole)
        return true;
    const std::vector<std::string> filters = filtersOf(stream);
    if (!isFlateOnly(filters))
        return isNoContent(filters);
    if (decoding == Decoding::partial && predictorOf(stream) == Predictor::known)
        return false;  // what is unpacked here would still be differences
    // libqpdf holds back what it has unpacked last. Other readers take odd parameters for none.
    std::string data;
    Pl_String receiver("packed", nullptr, data);
    stream.pipeStreamData(&receiver, nullptr, 0, qpdf_dl_none);
    inflateBehind(data, delivered, target);
    return true;
}

}  // namespace vellmora
