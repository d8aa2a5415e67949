#include "base/PngChunks.h"

#include <algorithm>
#include <array>

#include <QSet>
#include <QtEndian>

namespace vellmora {

namespace {

constexpr qsizetype signatureSize = 8;
constexpr qsizetype lengthSize = 4;
constexpr qsizetype typeSize = 4;
constexpr qsizetype checksumSize = 4;
constexpr qsizetype chunkOverhead = lengthSize + typeSize + checksumSize;

/// Transparency, colours, resolution and orientation; each may be there once.
bool belongsToPicture(QByteArrayView type) {
    constexpr std::array<QByteArrayView, 7> kept{"tRNS", "gAMA", "cHRM", "sRGB", "iCCP", "pHYs", "eXIf"};
    return std::find(kept.begin(), kept.end(), type) != kept.end();
}

/// An upper-case first letter: no picture without it (W3C PNG 5.4).
bool isCritical(QByteArrayView type) {
    return !(type[0] & 0x20);
}

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

QByteArray pictureChunks(const QByteArray& png) {
    QByteArray kept = png.first(std::min(png.size(), signatureSize));
    kept.reserve(png.size());
    QSet<QByteArrayView> seen;
    const bool isWhole = visitPngChunks(png, [&](QByteArrayView type, QByteArrayView data) {
        if (!isCritical(type) && (!belongsToPicture(type) || seen.contains(type)))
            return;
        seen.insert(type);
        kept.append(type.data() - lengthSize, data.size() + chunkOverhead);
    });
    return isWhole ? kept : QByteArray();
}

}  // namespace vellmora
