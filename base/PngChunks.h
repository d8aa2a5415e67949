#pragma once

#include <functional>

#include <QByteArrayView>

namespace vellmora {

using PngChunkVisitor = std::function<void(QByteArrayView type, QByteArrayView data)>;

/// Visits the chunks of a PNG (W3C PNG 5.3) in their order, up to the last one. False where one does not lie
/// within the file as a whole, or none is the last. Checksums are not looked at.
bool visitPngChunks(QByteArrayView png, const PngChunkVisitor& visit);

}  // namespace vellmora
