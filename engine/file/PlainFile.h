#pragma once

#include "base/SnapshotReader.h"
#include "engine/file/PlainObject.h"

#include <optional>
#include <string>
#include <vector>

namespace vellmora {

/// The objects of a file that is as most are, without the PDF library: it has a plain cross-reference table
/// whose entries are looked up where they stand, and no encryption. Opening takes the same time for every
/// number of objects, and so does finding one.
class PlainFile {
public:
    /// A part of the file, in bytes.
    struct Range {
        size_t offset = 0;
        size_t length = 0;
    };

    /// Nothing for other files, damaged ones too. The content must outlive the object. Throws `Error` where
    /// it cannot be read.
    static std::optional<PlainFile> open(const SnapshotReader& content);

    /// Reads an object; what `object` held before is forgotten. Throws `NotPlain` where the file does not
    /// have it, and where more was read since `beginReading` than a sound file gives cause for.
    void read(int number, PlainObject& object) const;
    /// The digits of a stream's /Length, behind the reference where it is one. Throws `NotPlain` where it is
    /// nothing of the kind.
    std::string_view statedLength(const PlainObject& stream) const;
    /// Where the bytes of the stream lie that was read as the object of that number. Throws `NotPlain` where
    /// their number is not the one that it states.
    Range data(int number, const PlainObject& stream) const;

    /// From now on each object is read once or twice, by one reader.
    void beginReading() const { m_bytesRead = 0; }
    /// What the file's bytes say of an object, to be used in another table: 20 bytes. Nothing where it says
    /// that there is none.
    std::optional<std::string_view> entry(int number) const;

    int catalog() const { return m_catalog; }
    /// Greater than all numbers of objects.
    int size() const { return m_size; }
    const SnapshotReader& content() const { return *m_content; }

private:
    /// Entries of consecutive numbers.
    struct Section {
        int first = 0;
        int count = 0;
        size_t position = 0;  ///< of the first entry
    };

    explicit PlainFile(const SnapshotReader& content) : m_content(&content) {}
    size_t lastTable() const;
    /// Answers the position of the one before it; nothing where it is the first.
    std::optional<size_t> readTable(size_t position);
    std::optional<size_t> readTrailer(size_t position);
    std::string_view line(size_t position) const;
    std::string_view upTo(size_t position, size_t length) const;
    size_t position(int number) const;

    const SnapshotReader* m_content;
    std::vector<Section> m_sections;  ///< the newest first
    int m_catalog = 0;
    int m_size = 0;
    mutable size_t m_bytesRead = 0;
};

}  // namespace vellmora
