#pragma once

#include "engine/objects/Qpdf.h"

#include <functional>

#include <QByteArray>

#include <qpdf/Buffer.hh>
#include <qpdf/Pl_Buffer.hh>
#include <qpdf/QPDFWriter.hh>

namespace vellmora::test {

using WriterSettings = std::function<void(QPDFWriter&)>;

/// The document written anew, everything possible in object streams, unless the settings say otherwise.
inline QByteArray rewritten(QByteArray bytes, const WriterSettings& settings = {}) {
    // libqpdf 12 ignores objects whose number is greater than a third of the file's length.
    bytes.insert(bytes.lastIndexOf("startxref"), QByteArray(4000, ' '));
    QPDF pdf;
    pdf.processMemoryFile("document", bytes.constData(), static_cast<size_t>(bytes.size()));
    Pl_Buffer buffer("output");
    QPDFWriter writer(pdf);
    writer.setOutputPipeline(&buffer);
    writer.setObjectStreamMode(qpdf_o_generate);
    if (settings)
        settings(writer);
    writer.write();
    const auto data = buffer.getBufferSharedPointer();
    return QByteArray(reinterpret_cast<const char*>(data->getBuffer()),
                      static_cast<qsizetype>(data->getSize()));
}

}  // namespace vellmora::test
