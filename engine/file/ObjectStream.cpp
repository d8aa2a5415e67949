#include "engine/file/ObjectStream.h"

#include <exception>
#include <new>
#include <sstream>

#include <qpdf/Buffer.hh>

namespace vellmora {

namespace {

std::string decoded(QPDFObjectHandle stream) {
    try {
        const auto data = stream.getStreamData(qpdf_dl_specialized);
        return {reinterpret_cast<const char*>(data->getBuffer()), data->getSize()};
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception&) {
        return {};
    }
}

}  // namespace

/// It begins with the numbers and positions of its members.
ObjectStream::ObjectStream(QPDFObjectHandle stream) {
    if (!stream.isStream())
        return;
    m_data = decoded(stream);
    QPDFObjectHandle count = stream.getDict().getKey("/N");
    QPDFObjectHandle first = stream.getDict().getKey("/First");
    const long long origin = first.isInteger() ? first.getIntValue() : -1;
    std::istringstream head(m_data);
    int number = 0;
    size_t offset = 0;
    for (long long i = 0; count.isInteger() && i < count.getIntValue() && head >> number >> offset; ++i) {
        m_numbers.push_back(number);
        if (origin < 0 || offset > m_data.size())
            continue;
        m_positions[number] = static_cast<size_t>(origin) + offset;
        m_borders.insert(m_positions[number]);
    }
}

std::string ObjectStream::textOf(int number) const {
    const auto found = m_positions.find(number);
    if (found == m_positions.end() || found->second > m_data.size())
        return {};
    const auto next = m_borders.upper_bound(found->second);
    return m_data.substr(found->second, next == m_borders.end() ? std::string::npos : *next - found->second);
}

}  // namespace vellmora
