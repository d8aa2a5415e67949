#include "engine/objects/DecodedBytes.h"

#include "engine/objects/PDFValues.h"

#include <algorithm>
#include <exception>
#include <stdexcept>

#include <qpdf/Pipeline.hh>

namespace vellmora {

namespace {

/// Takes bytes up to a limit.
class BoundedReceiver : public Pipeline {
public:
    enum class Rest { endsDecoding, isIgnored };
    BoundedReceiver(size_t limit, Rest rest) : Pipeline("look", nullptr), m_limit(limit), m_rest(rest) {}

    void write(const unsigned char* data, size_t length) override {
        const size_t taken = std::min(length, m_limit - m_bytes.size());
        m_bytes.append(reinterpret_cast<const char*>(data), taken);
        m_isWhole = m_isWhole && taken == length;
        if (!m_isWhole && m_rest == Rest::endsDecoding)
            throw std::length_error("more than is looked at");
    }
    void finish() override {}

    bool isWhole() const { return m_isWhole; }
    const std::string& bytes() const { return m_bytes; }

private:
    size_t m_limit;
    Rest m_rest;
    std::string m_bytes;
    bool m_isWhole = true;
};

/// A predictor takes memory for its columns before the first byte comes.
bool hasModestColumns(QPDFObjectHandle parameters) {
    constexpr double mostColumns = 1e5;
    if (parameters.isArray()) {
        for (QPDFObjectHandle item : parameters.aitems()) {
            if (item.isArray() || !hasModestColumns(item))
                return false;
        }
        return true;
    }
    return !parameters.isDictionary() || numberOr(parameters.getKey("/Columns"), 1) <= mostColumns;
}

}  // namespace

std::string leadingBytes(QPDFObjectHandle stream, size_t count) {
    if (!hasModestColumns(stream.getDict().getKey("/DecodeParms")))
        return {};
    BoundedReceiver receiver(count, BoundedReceiver::Rest::isIgnored);
    stream.pipeStreamData(&receiver, 0, qpdf_dl_specialized, true);
    return receiver.bytes();
}

std::optional<std::string> decodedBytes(QPDFObjectHandle stream, size_t limit) {
    if (!stream.isStream() || !hasModestColumns(stream.getDict().getKey("/DecodeParms")))
        return std::nullopt;
    BoundedReceiver receiver(limit, BoundedReceiver::Rest::endsDecoding);
    try {
        const bool isDecoded = stream.pipeStreamData(&receiver, 0, qpdf_dl_generalized, true);
        return isDecoded && receiver.isWhole() ? std::optional(receiver.bytes()) : std::nullopt;
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

}  // namespace vellmora
