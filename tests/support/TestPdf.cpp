#include "tests/support/TestPdf.h"

#include <map>

#include <QFile>

namespace vellmora::test {

namespace {

std::string streamBody(const std::string& entries, const std::string& data) {
    return "<< " + entries + " /Length " + std::to_string(data.size()) + " >>\nstream\n" + data +
           "\nendstream";
}

std::string reference(int number) {
    return std::to_string(number) + " 0 R";
}

/// Puts numbered objects into a file with a cross-reference table, a section for consecutive numbers each.
std::string fileOf(const std::map<int, std::string>& objects) {
    std::string file = "%PDF-1.7\n";
    std::map<int, size_t> offsets;
    for (const auto& [number, body] : objects) {
        offsets[number] = file.size();
        file += std::to_string(number) + " 0 obj\n" + body + "\nendobj\n";
    }
    const size_t table = file.size();
    file += "xref\n0 1\n0000000000 65535 f \n";
    for (auto from = offsets.begin(); from != offsets.end();) {
        const int first = from->first;
        std::string entries;
        int number = first;
        for (; from != offsets.end() && from->first == number; ++from, ++number) {
            const std::string digits = std::to_string(from->second);
            entries += std::string(10 - digits.size(), '0') + digits + " 00000 n \n";
        }
        file += std::to_string(first) + ' ' + std::to_string(number - first) + '\n' + entries;
    }
    file += "trailer\n<< /Root 1 0 R /Size " + std::to_string(objects.rbegin()->first + 1) +
            " >>\nstartxref\n" + std::to_string(table) + "\n%%EOF\n";
    return file;
}

}  // namespace

PdfBuilder& PdfBuilder::page(const std::string& entries, const std::string& content) {
    m_pages.push_back({entries, content});
    return *this;
}

PdfBuilder& PdfBuilder::object(const std::string& body) {
    m_objects.push_back(body);
    return *this;
}

PdfBuilder& PdfBuilder::stream(const std::string& entries, const std::string& data) {
    return object(streamBody(entries, data));
}

PdfBuilder& PdfBuilder::catalog(const std::string& entries) {
    m_catalog = entries;
    return *this;
}

QByteArray PdfBuilder::bytes() const {
    std::map<int, std::string> objects;
    std::string kids;
    int number = 3;
    for (const Page& page : m_pages) {
        const bool hasBox = page.entries.find("/MediaBox") != std::string::npos;
        const bool hasContents = page.entries.find("/Contents") != std::string::npos;
        objects[number] = "<< /Type /Page /Parent 2 0 R " + page.entries +
                          (hasBox ? "" : " /MediaBox [0 0 595 842]") +
                          (hasContents ? "" : " /Contents " + reference(number + 1)) + " >>";
        objects[number + 1] = streamBody("", page.content);
        kids += reference(number) + " ";
        number += 2;
    }
    objects[1] = "<< /Type /Catalog /Pages 2 0 R " + m_catalog + " >>";
    objects[2] = "<< /Type /Pages /Kids [ " + kids + "] /Count " + std::to_string(m_pages.size()) + " >>";
    for (size_t i = 0; i < m_objects.size(); ++i)
        objects[firstExtraObject + static_cast<int>(i)] = m_objects[i];
    return QByteArray::fromStdString(fileOf(objects));
}

PdfBuilder pages(int count) {
    PdfBuilder builder;
    for (int i = 0; i < count; ++i)
        builder.page({}, filledRect("0.5 0.5 0.5", "0 0 50 50"));
    return builder;
}

std::string filledRect(const std::string& rgb, const std::string& rect) {
    return rgb + " rg " + rect + " re f\n";
}

void writeFile(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qFatal("cannot write %s", qPrintable(path));
}

QByteArray readFile(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

}  // namespace vellmora::test
