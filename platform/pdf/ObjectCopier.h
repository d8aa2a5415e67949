#pragma once

#include "platform/pdf/Qpdf.h"

namespace vellmora {

/// Copies objects of a source file into the output, each indirect object once however often it is met.
/// Streams are not decoded; their bytes are fetched when the output is written, so the source must live until
/// then.
class ObjectCopier {
public:
    explicit ObjectCopier(QPDF& output) : m_output(output) {}

    /// The object's counterpart in the output; of a new object that belongs to no file, a copy. References to
    /// pages become null: a page brings only what it draws.
    QPDFObjectHandle copy(const QPDFObjectHandle& object) { return copy(object, maxNesting); }

    QPDF& output() { return m_output; }

private:
    static constexpr int maxNesting = 200;  ///< of direct objects within one another

    QPDFObjectHandle copy(QPDFObjectHandle object, int levels);

    QPDF& m_output;
};

}  // namespace vellmora
