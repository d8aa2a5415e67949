#pragma once

#include "engine/objects/Qpdf.h"

namespace vellmora {

/// Delivers the bytes of a stream of a source file as they stand there, compressed, only decrypted where need
/// be. What is damaged ends early; for want of memory that happens too, and is found by the warnings of the
/// source file.
class RawStream : public QPDFObjectHandle::StreamDataProvider {
public:
    explicit RawStream(const QPDFObjectHandle& stream) : m_stream(stream) {}
    void provideStreamData(const QPDFObjGen&, Pipeline* pipeline) override {
        m_stream.pipeStreamData(pipeline, nullptr, 0, qpdf_dl_none);
    }

private:
    QPDFObjectHandle m_stream;
};

}  // namespace vellmora
