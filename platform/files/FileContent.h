#pragma once

#include <memory>
#include <string_view>

#include <QByteArray>
#include <QString>

namespace vellmora {

/// The bytes of a file, at hand before all of them are read: a large file is read by a thread of its own,
/// after a moment's rest, and who needs a part of it earlier reads that part. Soon after opening, the file
/// itself is not needed any more.
///
/// May be used by several threads at a time.
class FileContent {
public:
    /// Throws `Error` as `files::read` does.
    static std::shared_ptr<const FileContent> open(const QString& path);

    explicit FileContent(QByteArray bytes);
    ~FileContent();
    FileContent(const FileContent&) = delete;
    FileContent& operator=(const FileContent&) = delete;

    size_t size() const { return static_cast<size_t>(m_bytes.size()); }

    /// A range inside of the content, in memory that lives as long as it. Waits until it is read; throws
    /// `Error` where it cannot be, or is not there any more.
    std::string_view range(size_t offset, size_t length) const;
    std::string_view all() const { return range(0, size()); }

    /// All of it will be needed: what is left to read is read without a rest from now on.
    void readAhead() const;

    /// Throws the `Error` of a range that could not be read, whoever asked for it.
    void requireReadable() const;

private:
    class Reading;
    FileContent(QByteArray bytes, std::unique_ptr<Reading> reading);

    QByteArray m_bytes;
    std::unique_ptr<Reading> m_reading;  ///< none where all is there
};

}  // namespace vellmora
