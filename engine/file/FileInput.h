#pragma once

#include "base/SnapshotReader.h"

#include <string>

#include <qpdf/InputSource.hh>

namespace vellmora {

/// Lets libqpdf read a file's content, which must outlive it. Throws `Error` where a part cannot be read.
class FileInput : public InputSource {
public:
    explicit FileInput(const SnapshotReader& content) : m_content(content) {}

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
    const SnapshotReader& m_content;
    std::string m_name;
    size_t m_position = 0;
};

}  // namespace vellmora
