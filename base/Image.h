#pragma once

#include "base/Rect.h"

#include <chrono>
#include <functional>
#include <optional>
#include <utility>

#include <QByteArray>
#include <QImage>
#include <QString>

namespace vellmora {

/// A decoded picture: its pixels in sRGB, and the encoded bytes that it came from.
class Image {
public:
    /// Largest picture that is decoded, in megabytes of pixels: a page of A3 at 600 dots per inch needs 266.
    static constexpr int maxDecodedMegabytes = 512;
    /// Largest file that is read, in bytes: what such a picture takes where nothing is compressed.
    static constexpr qint64 maxFileSize = qint64{maxDecodedMegabytes} << 20;
    /// How long a decoder may compute before it gets no more bytes. The largest picture takes a few seconds.
    static constexpr std::chrono::seconds longestDecoding{10};

    /// Decodes PNG or JPEG bytes, whatever their file was called. Colours are converted to sRGB where the
    /// file states a profile. Nothing where the bytes cannot be decoded as a whole.
    static std::optional<Image> fromData(const QByteArray& data,
                                         std::chrono::nanoseconds longest = longestDecoding);
    /// Reads and decodes a file; nothing where it is missing, unreadable or no picture.
    static std::optional<Image> fromFile(const QString& path);
    /// A picture that was drawn by the program itself.
    explicit Image(QImage pixels);

    /// Straight (not premultiplied) alpha where there is any.
    const QImage& pixels() const& { return m_pixels; }
    QImage pixels() && { return std::move(m_pixels); }

    /// Size in points, one for each pixel of a row; a file that states unlike resolutions for its two
    /// directions (fax scans) is as high as it looks.
    Size size() const;

    /// PNG of the whole picture at its own size in pixels: the very bytes where it came from a PNG, so that
    /// nothing is lost and no time is spent. Empty where it cannot be encoded.
    QByteArray pngRepresentation() const;
    /// Whether it was decoded from a PNG.
    bool isFromPng() const { return !m_png.isEmpty(); }

    /// The PNG that the picture came from, where its samples are the pixels as they stand: no colour was
    /// converted. Empty otherwise.
    QByteArray unconvertedPng() const { return m_isConverted ? QByteArray() : m_png; }

private:
    QImage m_pixels;
    QByteArray m_png;
    bool m_isConverted = false;
};

/// A picture that may be decoded later and on any thread.
struct DeferredPicture {
    /// Names the file and its version: equal versions hold the same picture. Empty where there is no file.
    QString version;
    /// Nothing where the picture is missing or cannot be decoded.
    std::function<std::optional<Image>()> load;
};

}  // namespace vellmora
