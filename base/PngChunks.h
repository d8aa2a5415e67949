#pragma once

#include <functional>

#include <QByteArray>
#include <QByteArrayView>

namespace vellmora {

using PngChunkVisitor = std::function<void(QByteArrayView type, QByteArrayView data)>;

/// Visits the chunks of a PNG (W3C PNG 5.3) in their order, up to the last one. False where one does not lie
/// within the file as a whole, or none is the last. Checksums are not looked at.
bool visitPngChunks(QByteArrayView png, const PngChunkVisitor& visit);

/// The PNG with only those chunks that its picture is made of: its pixels, colours and resolution. Texts,
/// animations and whatever else can be packed into a file are left out; a decoder would unpack them all.
/// Empty where `visitPngChunks` answers false.
QByteArray pictureChunks(const QByteArray& png);

}  // namespace vellmora
