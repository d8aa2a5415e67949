#pragma once

#include "platform/pdf/OpenFile.h"
#include "platform/pdf/PageOrientation.h"
#include "platform/pdf/Qpdf.h"

#include <memory>
#include <mutex>
#include <string_view>
#include <vector>

#include <QByteArray>

namespace vellmora {

/// One page as the file has it; attributes that it inherits from the page tree are resolved.
struct SourcePage {
    QPDFObjectHandle dictionary;
    QPDFObjectHandle resources;       ///< the nearest that are named; null where none are
    QPDFObjectHandle outerResources;  ///< that hold where those are a reference to nothing
    PageOrientation orientation;
    Rect cropBox;         ///< in the file's own space, inside the media box
    bool isLost = false;  ///< the tree names it, but the file does not have it: a blank page
};

/// The parsed file behind a document. The bytes are shared, not copied.
class PDFSource {
public:
    /// Nothing where the bytes are no PDF. No exception leaves this function.
    static std::unique_ptr<PDFSource> open(const QByteArray& bytes);

    qsizetype pageCount() const { return static_cast<qsizetype>(m_pages.size()); }
    const SourcePage& page(qsizetype index) const { return m_pages[static_cast<size_t>(index)]; }
    /// For drawing: whatever reads objects changes what the library keeps of the file. Counts and boxes of
    /// the pages are read without it.
    std::unique_lock<std::recursive_mutex> lock() const { return std::unique_lock(m_mutex); }

    /// The bytes as they are parsed: those that were opened, or a repaired copy.
    std::string_view file() const { return {m_bytes.constData(), static_cast<size_t>(m_bytes.size())}; }
    bool isEncrypted() const { return m_qpdf.isEncrypted(); }
    QPDFObjectHandle catalog() const { return m_catalog; }

private:
    PDFSource(QByteArray bytes, Damage damage);
    /// Pages that can be shown.
    qsizetype readablePageCount() const;
    bool isComplete() const { return pageCount() > 0 && readablePageCount() == pageCount(); }
    static std::unique_ptr<PDFSource> read(const QByteArray& bytes, Damage damage);

    mutable std::recursive_mutex m_mutex;
    QByteArray m_bytes;
    QPDF m_qpdf;
    QPDFObjectHandle m_catalog;
    std::vector<SourcePage> m_pages;
};

}  // namespace vellmora
