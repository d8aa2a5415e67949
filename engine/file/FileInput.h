#pragma once

#include "base/SnapshotReader.h"

#include <string>
#include <string_view>

#include <qpdf/InputSource.hh>

namespace vellmora {

/// Lets libqpdf read a file's content, which must outlive it. Throws `Error` where a part cannot be read.
///
/// libqpdf 12 ignores objects whose number is greater than a third of the file's length. Blanks stand behind
/// the content, so that a small file may have great numbers, and after them its last bytes once more, since a
/// file is read from its end.
class FileInput : public InputSource {
public:
    explicit FileInput(const SnapshotReader& content);
    /// The same with another end in place of the content's: a table and what follows it, which begins at
    /// `endPosition`.
    FileInput(const SnapshotReader& content, std::string end);
    static size_t endPosition(const SnapshotReader& content);

    qpdf_offset_t findAndSkipNextEOL() override;
    const std::string& getName() const override { return m_name; }
    qpdf_offset_t tell() override { return static_cast<qpdf_offset_t>(m_position); }
    /// libqpdf adds up positions from lengths that a file states. One outside of the file counts as its
    /// end, where nothing can be read.
    void seek(qpdf_offset_t offset, int whence) override;
    void rewind() override { m_position = 0; }
    size_t read(char* target, size_t length) override;
    void unreadCh(char ch) override;

private:
    /// What stands at the position, as far as it is at hand in one piece: one byte at least, `most` at most.
    std::string_view piece(size_t position, size_t most) const;

    const SnapshotReader& m_content;
    std::string m_end;  ///< empty where the content's own last bytes stand there
    size_t m_tail;      ///< where the end begins
    size_t m_size;
    std::string m_name;
    size_t m_position = 0;
};

}  // namespace vellmora
