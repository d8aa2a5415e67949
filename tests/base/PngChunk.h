#pragma once

#include <QByteArray>
#include <QtEndian>

#include <zlib.h>

namespace vellmora::test {

inline QByteArray bigEndian(quint32 number) {
    const quint32 bytes = qToBigEndian(number);
    return {reinterpret_cast<const char*>(&bytes), 4};
}

inline quint32 pngChecksum(const QByteArray& typeAndData) {
    return static_cast<quint32>(::crc32(0, reinterpret_cast<const Bytef*>(typeAndData.constData()),
                                        static_cast<uInt>(typeAndData.size())));
}

/// A part of a PNG file, with its length and a right checksum.
inline QByteArray pngChunk(const QByteArray& type, const QByteArray& data) {
    return bigEndian(static_cast<quint32>(data.size())) + type + data + bigEndian(pngChecksum(type + data));
}

}  // namespace vellmora::test
