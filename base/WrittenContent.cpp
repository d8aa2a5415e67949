#include "base/WrittenContent.h"

#include <functional>
#include <utility>

namespace vellmora {

/// In bytes: shorter pieces are too many to be kept.
static constexpr size_t leastOfSource = size_t{64} << 10;

WrittenContent::WrittenContent(std::shared_ptr<const FileSnapshot> source) : m_source(std::move(source)) {}

const char* WrittenContent::nextInSource() const {
    const bool isOfSource = !m_runs.empty() && m_runs.back().source;
    return isOfSource ? m_runs.back().source + m_runs.back().length : nullptr;
}

bool WrittenContent::isOfSource(std::string_view bytes) const {
    if (!m_source)
        return false;
    const std::string_view all = m_source->view(0, m_source->size());
    const std::less_equal<> isUpTo;
    if (!isUpTo(all.data(), bytes.data()) || !isUpTo(bytes.data() + bytes.size(), all.data() + all.size()))
        return false;
    return bytes.size() >= leastOfSource || bytes.data() == nextInSource();
}

void WrittenContent::add(std::string_view bytes) {
    if (bytes.empty())
        return;
    const char* source = isOfSource(bytes) ? bytes.data() : nullptr;
    if (!source)
        m_others.add(bytes);
    if (!m_runs.empty() && source == nextInSource())
        m_runs.back().length += bytes.size();
    else
        m_runs.push_back({source, bytes.size()});
    m_size += bytes.size();
}

bool WrittenContent::isHeldBy(const FileDescriptor& file, const QString& path) const {
    ContentDigest others;
    auto run = m_runs.cbegin();
    uint64_t done = 0;  // of the run
    bool isSame = true;
    forEachPiece(file, path, [&](std::string_view piece, size_t) {
        while (isSame && !piece.empty()) {
            if (run == m_runs.cend())
                return isSame = false;
            const std::string_view part = piece.substr(0, run->length - done);
            if (run->source)
                isSame = part == std::string_view(run->source + done, part.size());
            else
                others.add(part);
            done += part.size();
            if (done == run->length) {
                ++run;
                done = 0;
            }
            piece.remove_prefix(part.size());
        }
        return isSame;
    });
    return isSame && run == m_runs.cend() && others == m_others;
}

}  // namespace vellmora
