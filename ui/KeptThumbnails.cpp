#include "ui/KeptThumbnails.h"

#include "base/Error.h"
#include "base/Files.h"

#include <cstring>
#include <utility>

#include <QDataStream>
#include <QFileInfo>
#include <QIODevice>

namespace vellmora {

namespace {

constexpr auto streamVersion = QDataStream::Qt_6_0;
/// What the file begins with. Another number for pictures that are scaled otherwise.
const QByteArray formatName = QByteArrayLiteral("Vellmora thumbnails 1");
constexpr qsizetype maxFileSize = 16 << 20;  // bytes
constexpr int maxSide = 4096;                // pixels
constexpr int bytesPerPixel = 4;

/// The formats that pictures have on the screen.
bool isShown(QImage::Format format) {
    return format == QImage::Format_RGB32 || format == QImage::Format_ARGB32_Premultiplied;
}

void write(QDataStream& stream, const QString& key, const QImage& picture) {
    QByteArray pixels;
    pixels.reserve(qsizetype{picture.height()} * picture.width() * bytesPerPixel);
    for (int y = 0; y < picture.height(); ++y)
        pixels.append(reinterpret_cast<const char*>(picture.constScanLine(y)),
                      qsizetype{picture.width()} * bytesPerPixel);
    stream << key << qint32{picture.format()} << qint32{picture.width()} << qint32{picture.height()}
           << pixels;
}

/// Null where there is none.
QImage readPicture(QDataStream& stream, QString& key) {
    qint32 format = 0;
    qint32 width = 0;
    qint32 height = 0;
    QByteArray pixels;
    stream >> key >> format >> width >> height >> pixels;
    const bool isPlausible = width > 0 && width <= maxSide && height > 0 && height <= maxSide &&
                             pixels.size() == qsizetype{width} * height * bytesPerPixel;
    if (stream.status() != QDataStream::Ok || !isPlausible || !isShown(QImage::Format(format)))
        return {};
    QImage picture(width, height, QImage::Format(format));
    if (!picture.isNull())
        std::memcpy(picture.bits(), pixels.constData(), static_cast<size_t>(pixels.size()));
    return picture;
}

QByteArray encoded(const QHash<QString, QImage>& pictures) {
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setVersion(streamVersion);
    stream << formatName;
    for (auto entry = pictures.cbegin(); entry != pictures.cend(); ++entry) {
        if (isShown(entry->format()))
            write(stream, entry.key(), entry.value());
    }
    return bytes;
}

/// All of them, or none where the file is not as `encoded` makes it.
QHash<QString, QImage> decoded(const QByteArray& bytes) {
    QDataStream stream(bytes);
    stream.setVersion(streamVersion);
    QByteArray format;
    stream >> format;
    if (format != formatName)
        return {};
    QHash<QString, QImage> pictures;
    while (!stream.atEnd()) {
        QString key;
        const QImage picture = readPicture(stream, key);
        if (picture.isNull())
            return {};
        pictures.insert(key, picture);
    }
    return pictures;
}

}  // namespace

KeptThumbnails::KeptThumbnails(Thumbnails& thumbnails, QString path)
    : m_thumbnails(thumbnails), m_path(std::move(path)) {
    if (m_path.isEmpty())
        return;
    try {
        m_kept = decoded(files::read(m_path, maxFileSize));
    } catch (const Error&) {
        return;
    }
    m_thumbnails.offer(m_kept);
}

void KeptThumbnails::keep() {
    m_thumbnails.offer({});
    QHash<QString, QImage> pictures = m_thumbnails.pictures();
    if (m_path.isEmpty() || pictures == m_kept)
        return;
    m_kept = std::move(pictures);
    m_writer.run([path = m_path, kept = m_kept] {
        const QByteArray bytes = encoded(kept);
        if (bytes.size() > maxFileSize)
            return;
        try {
            files::createDirectory(QFileInfo(path).path());
            files::putInPlace(path, bytes);
        } catch (const Error&) {
            return;
        }
    });
}

void KeptThumbnails::forget() {
    if (m_path.isEmpty())
        return;
    m_kept.clear();
    m_writer.run([path = m_path] {
        try {
            if (files::exists(path))
                files::remove(path);
        } catch (const Error&) {
            return;
        }
    });
}

}  // namespace vellmora
