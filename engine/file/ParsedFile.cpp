#include "engine/file/ParsedFile.h"

#include "engine/file/FileRepair.h"
#include "engine/file/OpenFile.h"
#include "engine/file/PageTree.h"
#include "engine/objects/ObjectPlaces.h"

#include <algorithm>
#include <exception>
#include <new>
#include <string>
#include <utility>

namespace vellmora {

ParsedFile::ParsedFile(std::shared_ptr<const SnapshotReader> content, Damage damage)
    : m_content(std::move(content)), m_reading(damage) {
    try {
        openFile(m_qpdf, *m_content, damage);
        m_catalog = m_qpdf.getRoot();
        m_pages = collectPages(m_qpdf);
    } catch (const QPDFExc&) {
        hasMetDamage();
        throw;
    }
    if (bringBackObjects())
        m_pages = collectPages(m_qpdf);
}

/// Many sound files have a table that is slightly wrong, which costs no object.
static bool isOfTable(const std::string& warning) {
    const auto contains = [&warning](const char* words) { return warning.find(words) != std::string::npos; };
    return contains("xref") || contains("reported number of objects");
}

/// A small file may have a table of a thousand million objects.
static bool hasCredibleTable(QPDF& file) {
    QPDFObjectHandle size = file.getTrailer().getKey("/Size");
    return size.isInteger() && size.getIntValue() <= greatestObjectNumber + 1LL;
}

bool ParsedFile::hasMetDamage() const {
    bool hasMet = false;
    for (const QPDFExc& warning : m_qpdf.getWarnings()) {
        m_isSound = false;
        if (warning.getMessageDetail().find(std::bad_alloc().what()) != std::string::npos)
            throw std::bad_alloc();
        hasMet |= warning.getErrorCode() == qpdf_e_damaged_pdf && !isOfTable(warning.getMessageDetail());
    }
    return hasMet;
}

bool ParsedFile::bringBackObjects() const {
    if (!hasMetDamage() || m_allAreRead || !hasCredibleTable(m_qpdf))
        return false;
    m_allAreRead = true;
    try {
        m_givenUp = GivenUpObjects::bringBack(m_qpdf, *m_content, m_reading);
        hasMetDamage();
        return m_givenUp != nullptr;
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception&) {
        return false;
    }
}

std::unique_ptr<ParsedFile> ParsedFile::read(const std::shared_ptr<const SnapshotReader>& content,
                                             Damage damage, Obstacles& obstacles) {
    try {
        return std::unique_ptr<ParsedFile>(new ParsedFile(content, damage));
    } catch (const QPDFExc& error) {
        obstacles.needsPassword |= error.getErrorCode() == qpdf_e_password;
        return nullptr;
    } catch (const std::bad_alloc&) {
        obstacles.lacksMemory = true;
        return nullptr;
    } catch (const std::exception&) {
        return nullptr;
    }
}

qsizetype ParsedFile::readablePageCount() const {
    return std::count_if(m_pages.begin(), m_pages.end(), [](const ParsedPage& page) { return !page.isLost; });
}

/// Whether nothing follows the last whole object, where the position of the table should.
static bool isCutOff(std::string_view file) {
    const size_t lastObject = file.rfind("endobj");
    return file.find("startxref", lastObject == std::string_view::npos ? 0 : lastObject) ==
           std::string_view::npos;
}

static bool hasLostContent(QPDFObjectHandle page) {
    QPDFObjectHandle content = page.getKey("/Contents");
    if (!content.isArray())
        return content.isIndirect() && content.isNull();
    std::vector<QPDFObjectHandle> parts = content.getArrayAsVector();
    return std::any_of(parts.begin(), parts.end(), [](QPDFObjectHandle& part) { return part.isNull(); });
}

void ParsedFile::findDamage(const SnapshotReader& opened, bool isRepaired) {
    m_damage.isRepaired = isRepaired;
    m_damage.isCutOff = isRepaired && isCutOff(opened.all());
    for (size_t i = 0; i < m_pages.size(); ++i) {
        if (m_pages[i].isLost || (isRepaired && hasLostContent(m_pages[i].dictionary)))
            m_damage.lostPages.append(static_cast<qsizetype>(i));
    }
    QPDFObjectHandle count = m_catalog.getKey("/Pages").getKey("/Count");
    const qsizetype stated = count.isInteger() ? count.getIntValue() : 0;
    if (stated > pageCount() && stated <= static_cast<qsizetype>(m_qpdf.getXRefTable().size()))
        m_damage.uncountedPages = stated - pageCount();
}

std::unique_ptr<ParsedFile> ParsedFile::open(const std::shared_ptr<const SnapshotReader>& content) {
    bool isRepaired = false;
    try {
        std::unique_ptr<ParsedFile> source = choose(content, isRepaired);
        if (source)
            source->findDamage(*content, isRepaired);
        return source;
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception&) {
        return nullptr;
    }
}

/// The source as it is where all its pages are there, else the repaired one where that has more.
std::unique_ptr<ParsedFile> ParsedFile::choose(const std::shared_ptr<const SnapshotReader>& content,
                                               bool& isRepaired) {
    Obstacles obstacles;
    auto source = read(content, Damage::refuse, obstacles);
    if (source && source->isComplete())
        return source;
    Obstacles obstaclesToRepair;
    try {
        const std::string_view all = content->all();
        const auto damaged = QByteArray::fromRawData(all.data(), static_cast<qsizetype>(all.size()));
        const auto repairedContent = std::make_shared<const SnapshotReader>(repairedFile(damaged));
        auto repaired = read(repairedContent, Damage::refuse, obstaclesToRepair);
        if (repaired && repaired->readablePageCount() > (source ? source->readablePageCount() : 0)) {
            // That of attachments, where the repaired source can be read without it.
            isRepaired = !obstacles.needsPassword;
            return repaired;
        }
    } catch (const std::exception&) {  // NOLINT(bugprone-empty-catch): the source is taken as it is
    }
    isRepaired = !source;
    if (!source)
        source = read(content, Damage::recover, obstacles);
    if (!source && obstacles.lacksMemory)
        throw std::bad_alloc();
    return source;
}

}  // namespace vellmora
