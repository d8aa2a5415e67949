#include "base/PngChunks.h"

#include <QtEndian>

namespace vellmora {

namespace {

constexpr qsizetype signatureSize = 8;
constexpr qsizetype lengthSize = 4;
constexpr qsizetype typeSize = 4;
constexpr qsizetype chunkOverhead = lengthSize + typeSize + 4;  // and the checksum

}  // namespace

bool visitPngChunks(QByteArrayView png, const PngChunkVisitor& visit) {
    qsizetype at = signatureSize;
    while (at + chunkOverhead <= png.size()) {
        const qsizetype length = qFromBigEndian<quint32>(png.data() + at);
        if (length > png.size() - at - chunkOverhead)
            return false;
        const QByteArrayView type = png.sliced(at + lengthSize, typeSize);
        visit(type, {type.end(), length});
        if (type == "IEND")
            return true;
        at += chunkOverhead + length;
    }
    return false;
}

}  // namespace vellmora
