#include "pdf/Delivery.h"

#include "pdf/DocumentHelper.h"

#include <algorithm>

namespace vellmora {

namespace {

/// So much of the source is handed on at a time: it stays in the processor's cache.
constexpr size_t pieceSize = 256 << 10;

void requirePdf(std::string_view start) {
    if (start.substr(0, 5) != "%PDF-")
        throw HelperLost(DocumentFailure::unsound);
}

}  // namespace

void Delivery::add(std::string_view bytes) {
    if (m_delivered == 0)
        requirePdf(bytes);
    if (static_cast<qint64>(bytes.size()) > m_most - m_delivered)
        throw HelperLost(DocumentFailure::tooLarge);
    m_delivered += static_cast<qint64>(bytes.size());
    m_consumer.write(bytes.data(), static_cast<qint64>(bytes.size()));
}

void Delivery::add(SourceRange range, const WorkProgress* progress) {
    if (!m_snapshot || range.offset > m_snapshot->size() || range.length > m_snapshot->size() - range.offset)
        throw HelperLost(DocumentFailure::unsound);
    while (range.length > 0) {
        if (progress && progress->isCancelled())
            throw WorkProgress::cancelledError();
        const size_t length = std::min<size_t>(range.length, pieceSize);
        add(pieceOfSource(range.offset, length));
        range.offset += length;
        range.length -= length;
    }
}

std::string_view Delivery::pieceOfSource(size_t offset, size_t length) {
    if (const std::string_view piece = m_snapshot->view(offset, length); !piece.empty())
        return piece;
    m_piece.resize(length);
    if (m_file)
        m_file->read(offset, m_piece.data(), length);
    else
        m_snapshot->read(offset, m_piece.data(), length);
    return {m_piece.data(), length};
}

void Delivery::requireBegun() const {
    if (m_delivered == 0)
        requirePdf({});
}

}  // namespace vellmora
