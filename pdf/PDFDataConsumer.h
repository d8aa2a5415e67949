#pragma once

#include "base/AtomicFile.h"

#include <QByteArray>

namespace vellmora {

/// Takes the bytes of a PDF as they are written.
class PDFDataConsumer {
public:
    virtual ~PDFDataConsumer() = default;
    /// Throws `Error` where the bytes cannot be taken.
    virtual void write(const char* bytes, qint64 count) = 0;
    /// Forgets all that was written: another file is written in its place. False where that cannot be done.
    /// Throws `Error`.
    virtual bool restart() { return false; }
    /// Called once after the last byte. Throws `Error`; nothing was delivered then.
    virtual void finish() = 0;
};

/// Writes to a file, which appears under its name as a whole when it is finished, or not at all.
class FileConsumer : public PDFDataConsumer {
public:
    /// Throws `Error` where no file can be written at `path`.
    explicit FileConsumer(const QString& path) : m_file(path) {}

    void write(const char* bytes, qint64 count) override { m_file.write(bytes, count); }
    bool restart() override {
        m_file.restart();
        return true;
    }
    void finish() override { m_file.commit(); }

private:
    AtomicFile m_file;
};

/// Writes a file that takes the place of another when it is told to, and not with its last byte already.
class ReplacementConsumer : public PDFDataConsumer {
public:
    /// Throws `Error` where nothing can be written beside the original.
    explicit ReplacementConsumer(const QString& original) : m_file(original, FileAction::replace) {}

    void write(const char* bytes, qint64 count) override { m_file.write(bytes, count); }
    bool restart() override {
        m_file.restart();
        return true;
    }
    void finish() override { m_file.finish(); }
    /// One step, after `finish()`. Throws `Error`; the original is as it was then.
    void replaceOriginal() { m_file.commit(); }

private:
    AtomicFile m_file;
};

/// Keeps the bytes in memory.
class MemoryConsumer : public PDFDataConsumer {
public:
    void write(const char* bytes, qint64 count) override { m_bytes.append(bytes, count); }
    bool restart() override {
        m_bytes.clear();
        return true;
    }
    void finish() override {}
    const QByteArray& bytes() const { return m_bytes; }

private:
    QByteArray m_bytes;
};

}  // namespace vellmora
