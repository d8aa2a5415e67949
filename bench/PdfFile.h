#pragma once

#include <QByteArray>
#include <QFile>
#include <QList>

/// Objects of a PDF file, written one after the other and found again by its table.
class PdfFile {
public:
    explicit PdfFile(const QString& path) : m_file(path) {
        if (!m_file.open(QIODevice::WriteOnly))
            qFatal("%s cannot be written", qPrintable(path));
        put("%PDF-1.4\n");
    }

    /// Answers the object's number; they count from 1.
    int add(const QByteArray& body) {
        m_offsets.append(m_position);
        const int number = static_cast<int>(m_offsets.size());
        put(QByteArray::number(number) + " 0 obj\n" + body + "\nendobj\n");
        return number;
    }

    int addStream(const QByteArray& entries, const QByteArray& data) {
        return add("<< " + entries + " /Length " + QByteArray::number(data.size()) + " >>\nstream\n" + data +
                   "\nendstream");
    }

    int nextNumber() const { return static_cast<int>(m_offsets.size()) + 1; }

    void finish(int catalog = 1) {
        const QByteArray table = QByteArray::number(m_position);
        const QByteArray size = QByteArray::number(m_offsets.size() + 1);
        put("xref\n0 " + size + "\n0000000000 65535 f \n");
        for (const qint64 offset : m_offsets)
            put(QByteArray::number(offset).rightJustified(10, '0') + " 00000 n \n");
        put("trailer\n<< /Size " + size + " /Root " + QByteArray::number(catalog) + " 0 R >>\nstartxref\n" +
            table + "\n%%EOF\n");
    }

private:
    void put(const QByteArray& bytes) {
        if (m_file.write(bytes) != bytes.size())
            qFatal("%s cannot be written", qPrintable(m_file.fileName()));
        m_position += bytes.size();
    }

    QFile m_file;
    qint64 m_position = 0;
    QList<qint64> m_offsets;
};
