#include "pdf/DocumentMessages.h"

#include "base/DescriptorPacket.h"

#include <array>
#include <span>
#include <utility>

#include <QDataStream>
#include <QIODevice>

namespace vellmora {

namespace {

void put(QDataStream& stream, const EncodedSamples& samples) {
    stream << samples.width << samples.height << static_cast<qint32>(samples.colors)
           << samples.bitsPerComponent << samples.hasPredictor << QByteArray::fromStdString(samples.palette)
           << QByteArray::fromRawData(samples.data.data(), static_cast<qsizetype>(samples.data.size()));
}

EncodedSamples take(QDataStream& stream) {
    EncodedSamples samples;
    qint32 colors = 0;
    QByteArray palette;
    QByteArray data;
    stream >> samples.width >> samples.height >> colors >> samples.bitsPerComponent >> samples.hasPredictor >>
        palette >> data;
    samples.colors = static_cast<EncodedSamples::Colors>(colors);
    samples.palette = palette.toStdString();
    samples.data = data.toStdString();
    return samples;
}

}  // namespace

bool sendDocumentRequest(int socket, const DocumentRequest& request, int memory, int file) {
    const std::array descriptors{memory, file};
    return sendWithDescriptors(socket, std::as_bytes(std::span(&request, 1)),
                               std::span(descriptors).first(file < 0 ? 1 : 2));
}

std::optional<ReceivedDocumentRequest> receiveDocumentRequest(int socket) {
    ReceivedDocumentRequest received;
    auto descriptors =
        receiveWithDescriptors(socket, std::as_writable_bytes(std::span(&received.message, 1)));
    if (!descriptors)
        return std::nullopt;
    received.memory = std::move(descriptors->front());
    received.file = std::move(descriptors->back());
    return received;
}

QByteArray packedPictures(const std::vector<EncodedPicture>& pictures) {
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    for (const EncodedPicture& picture : pictures) {
        put(stream, picture.colors);
        stream << picture.alpha.has_value();
        if (picture.alpha)
            put(stream, *picture.alpha);
    }
    return bytes;
}

std::vector<EncodedPicture> unpackedPictures(const QByteArray& bytes) {
    std::vector<EncodedPicture> pictures;
    QDataStream stream(bytes);
    while (!stream.atEnd() && stream.status() == QDataStream::Ok) {
        EncodedPicture picture{take(stream), std::nullopt};
        bool hasAlpha = false;
        stream >> hasAlpha;
        if (hasAlpha)
            picture.alpha = take(stream);
        pictures.push_back(std::move(picture));
    }
    return pictures;
}

}  // namespace vellmora
