#pragma once

#include "pdf/PDFDocument.h"

#include <memory>
#include <string>
#include <vector>

#include <QByteArray>
#include <QString>

namespace vellmora::test {

/// Writes PDF files by hand, object by object: sound ones with a right cross-reference table.
class PdfBuilder {
public:
    /// Entries of the page's dictionary beside /Type, /Parent and /Contents, for example "/Rotate 90". A page
    /// without a media box is A4.
    PdfBuilder& page(const std::string& entries = {}, const std::string& content = {});
    /// An object of its own. Its number is `firstExtraObject` plus the count of those added before it.
    PdfBuilder& object(const std::string& body);
    /// A stream object, dictionary entries without /Length.
    PdfBuilder& stream(const std::string& entries, const std::string& data);
    /// Entries for the catalog beside /Type and /Pages.
    PdfBuilder& catalog(const std::string& entries);

    QByteArray bytes() const;
    /// Opened by a process of the test's own.
    std::shared_ptr<const PDFDocument> document() const;

    static constexpr int firstExtraObject = 1000;

private:
    struct Page {
        std::string entries;
        std::string content;
    };
    std::vector<Page> m_pages;
    std::vector<std::string> m_objects;
    std::string m_catalog;
};

/// A document of `count` A4 pages, each with a grey square in its lower left corner.
PdfBuilder pages(int count);

/// "x y w h re f" in an RGB colour given as three numbers.
std::string filledRect(const std::string& rgb, const std::string& rect);

void writeFile(const QString& path, const QByteArray& bytes);
QByteArray readFile(const QString& path);

}  // namespace vellmora::test
