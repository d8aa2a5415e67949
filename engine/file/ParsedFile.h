#pragma once

#include "base/SnapshotReader.h"
#include "engine/file/GivenUpObjects.h"
#include "engine/file/OpenFile.h"
#include "engine/file/PageOrientation.h"
#include "engine/file/PageOutline.h"
#include "engine/file/PlainPart.h"
#include "engine/objects/Qpdf.h"
#include "pdf/DocumentDamage.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vellmora {

class ParsedFile;

/// One page as the file has it; attributes that it inherits from the page tree are resolved.
struct ParsedPage {
    /// A value of its dictionary; null where there is none.
    QPDFObjectHandle entry(const char* key) const;

    QPDFObjectHandle dictionary;
    QPDFObjectHandle resources;       ///< the nearest that are named; null where none are
    QPDFObjectHandle outerResources;  ///< that hold where those are a reference to nothing
    PageOrientation orientation;
    Rect cropBox;                       ///< what is shown: in the file's own space, inside the media box
    std::optional<Rect> statedCropBox;  ///< as the file states it; it may reach out of the media box
    bool isLost = false;                ///< the tree names it, but the file does not have it: a blank page
    const ParsedFile* part = nullptr;   ///< that has a short way to the dictionary; not of all pages
};

/// The parsed file behind a document. For one thread: whatever reads objects changes what libqpdf keeps of
/// the file.
class ParsedFile {
public:
    /// Nothing where the content is no PDF, or cannot be read. Throws nothing but `std::bad_alloc`, where
    /// that is what it lacks.
    static std::unique_ptr<ParsedFile> open(const std::shared_ptr<const SnapshotReader>& content);
    /// A part of a file, which knows of no other pages. Nothing where the PDF library does not read it as the
    /// outline has it. Throws as `open` does.
    static std::unique_ptr<ParsedFile> openPart(const std::shared_ptr<const SnapshotReader>& content,
                                                const PlainFile& file, const PageOutline& outline,
                                                const PlainPart& part);

    qsizetype pageCount() const { return static_cast<qsizetype>(m_pages.size()); }
    bool hasPage(qsizetype index) const { return index >= m_firstPage && index - m_firstPage < pageCount(); }
    /// By the index in the file.
    const ParsedPage& page(qsizetype index) const {
        return m_pages[static_cast<size_t>(index - m_firstPage)];
    }

    /// The bytes as they are parsed: those that were opened, or a repaired copy.
    const SnapshotReader& content() const { return *m_content; }
    bool isEncrypted() const { return m_qpdf.isEncrypted(); }
    const DocumentDamage& damage() const { return m_damage; }

    /// Brings back the objects that libqpdf has given up since the document was opened; they are null
    /// without that, also those that were read before. True where there are any: what was drawn with them is
    /// to be drawn again. Throws `std::bad_alloc` where libqpdf has given up
    /// anything for want of memory, which it takes for damage.
    bool bringBackObjects() const;
    QPDFObjectHandle catalog() const { return m_catalog; }
    /// The short way to the objects of a part: what it answers is what the PDF library reads. Null where
    /// there is none, and from when on the library has met damage.
    const PlainFile* plainFile() const { return m_isSound && m_plainFile ? &*m_plainFile : nullptr; }

    /// A value of the page's dictionary without reading that with the PDF library; nothing where that is to
    /// do it. For `ParsedPage`.
    std::optional<QPDFObjectHandle> plainEntry(const ParsedPage& page, const char* key) const;

private:
    ParsedFile(std::shared_ptr<const SnapshotReader> content, Damage damage);
    ParsedFile(std::shared_ptr<const SnapshotReader> content, const PlainFile& file,
               const PageOutline& outline, const PlainPart& part);
    void addPage(int number, const PageOutline::Attributes& attributes);
    static std::unique_ptr<ParsedFile> choose(const std::shared_ptr<const SnapshotReader>& content,
                                              bool& isRepaired);
    void findDamage(const SnapshotReader& opened, bool isRepaired);
    /// Pages that can be shown.
    qsizetype readablePageCount() const;
    bool isComplete() const { return pageCount() > 0 && readablePageCount() == pageCount(); }
    /// Why it could not be read.
    struct Obstacles {
        bool needsPassword = false;
        bool lacksMemory = false;
    };
    static std::unique_ptr<ParsedFile> read(const std::shared_ptr<const SnapshotReader>& content,
                                            Damage damage, Obstacles& obstacles);
    /// Whether libqpdf has met damage since it was asked last.
    bool hasMetDamage() const;

    std::shared_ptr<const SnapshotReader> m_content;
    Damage m_reading;
    mutable std::unique_ptr<GivenUpObjects> m_givenUp;
    mutable bool m_allAreRead = false;  ///< all objects of the file: no more can be given up
    std::optional<PlainFile> m_plainFile;
    mutable PlainObject m_plainPage;  ///< the one that was read last
    mutable int m_plainPageNumber = 0;
    mutable bool m_isSound = true;  ///< as far as libqpdf has read it
    mutable QPDF m_qpdf;
    QPDFObjectHandle m_catalog;
    qsizetype m_firstPage = 0;
    std::vector<ParsedPage> m_pages;
    std::map<std::string, QPDFObjectHandle> m_inheritedResources;  ///< of a part, by their text
    DocumentDamage m_damage;
};

}  // namespace vellmora
