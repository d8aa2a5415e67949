#pragma once

#include "platform/pdf/Qpdf.h"

#include <map>
#include <utility>
#include <vector>

namespace vellmora {

/// Copies objects of source files into the output, each indirect object once however often it is met, and
/// however long the chains of references are. Streams are not decoded; their bytes are fetched when the
/// output is written, so the sources must live until then.
class ObjectCopier {
public:
    explicit ObjectCopier(QPDF& output) : m_output(output) {}

    /// The object's counterpart in the output. References to pages become null: a page brings only what it
    /// draws.
    QPDFObjectHandle copy(const QPDFObjectHandle& object);

    QPDF& output() { return m_output; }

private:
    using Source = std::pair<QPDF*, QPDFObjGen>;

    static constexpr int maxNesting = 500;  ///< of direct objects within one another

    QPDFObjectHandle counterpart(QPDFObjectHandle object, int levels = maxNesting);
    QPDFObjectHandle makeCounterpart(QPDFObjectHandle object);
    void fill(QPDFObjectHandle target, QPDFObjectHandle source, int levels = maxNesting);

    QPDF& m_output;
    std::map<Source, QPDFObjectHandle> m_copies;
    /// Counterparts that are empty so far, each with its source.
    std::vector<std::pair<QPDFObjectHandle, QPDFObjectHandle>> m_pending;
};

}  // namespace vellmora
