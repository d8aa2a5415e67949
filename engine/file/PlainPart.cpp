#include "engine/file/PlainPart.h"

#include <algorithm>
#include <string_view>
#include <vector>

namespace vellmora {

namespace {

constexpr size_t mostObjects = 20000;

/// Where a page's dictionary leads to, but its drawing does not.
bool leadsElsewhere(std::string_view key) {
    return key == "/Parent" || key == "/B" || key == "/PieceInfo" || key == "/Metadata" || key == "/Thumb";
}

/// Finds the objects that can be reached. Page nodes that are met on the way are reached, and lead nowhere:
/// nothing that is drawn lies behind them.
class Search {
public:
    explicit Search(const PlainFile& file) : m_file(file), m_isFound(static_cast<size_t>(file.size())) {}

    size_t count() const { return m_found.size(); }
    /// The number of the page tree's root.
    int pages() const { return m_pages; }
    std::vector<int> found() {
        std::sort(m_found.begin(), m_found.end());
        return std::move(m_found);
    }

    void addDocument() {
        m_file.beginReading();
        PlainObject catalog;
        note(m_file.catalog());
        m_file.read(m_file.catalog(), catalog);
        m_pages = plainReference(catalog.entry("/Pages"));
        note(m_pages);
        for (const char* key : {"/OCProperties", "/OutputIntents"})
            addValue(catalog.entry(key));
        addForm(catalog.entry("/AcroForm"));
        follow();
    }

    void addPage(int number, const PageOutline::Attributes& attributes) {
        // One that was met on the way to it was not followed.
        note(number);
        PlainObject page;
        m_file.read(number, page);
        for (const auto& [key, value] : page.entries()) {
            if (!leadsElsewhere(key))
                addValue(value);
        }
        addValue(attributes.resources);
        addValue(attributes.outerResources);
        follow();
    }

private:
    bool note(int number) {
        const auto place = static_cast<size_t>(number);
        if (place >= m_isFound.size() || m_isFound[place])
            return false;
        m_isFound[place] = true;
        m_found.push_back(number);
        return true;
    }

    void addValue(std::string_view value) {
        if (value.empty())
            return;
        // The blank ends a number.
        m_text.assign(value).append(1, ' ');
        m_object.readValue(m_text);
        add(m_object.references());
    }

    /// The form without its list of all fields: a field is found by its widget on a page.
    void addForm(std::string_view value) {
        PlainObject form;
        if (const int number = plainReference(value); number > 0) {
            if (!m_file.entry(number))
                return;
            note(number);
            m_file.read(number, form);
        } else if (value.starts_with("<<")) {
            form.readValue(value);
        }
        for (const auto& [key, entry] : form.entries()) {
            if (key != "/Fields")
                addValue(entry);
        }
    }

    void add(const std::vector<int>& references) {
        for (const int number : references) {
            if (note(number))
                m_pending.push_back(number);
        }
    }

    void follow() {
        while (!m_pending.empty()) {
            const int number = m_pending.back();
            m_pending.pop_back();
            if (!m_file.entry(number))
                continue;
            m_file.read(number, m_object);
            const std::string_view type = m_object.entry("/Type");
            if (type != "/Page" && type != "/Pages")
                add(m_object.references());
            if (m_found.size() > mostObjects)
                throw NotPlain();
        }
    }

    const PlainFile& m_file;
    std::vector<bool> m_isFound;  ///< by number
    std::vector<int> m_found;
    std::vector<int> m_pending;
    int m_pages = 0;
    PlainObject m_object;
    std::string m_text;
};

/// The PDF library opens no file without a root of the page tree. The file's own may name all pages, at which
/// nobody looks here.
constexpr std::string_view emptyPages = " 0 obj\n<< /Type /Pages /Kids [] /Count 0 >>\nendobj\n";

/// Of an object that is in use.
std::string entryAt(size_t position) {
    const std::string digits = std::to_string(position);
    constexpr size_t width = 10;
    if (digits.size() > width)
        throw NotPlain();
    return std::string(width - digits.size(), '0') + digits + " 00000 n \n";
}

/// The root of the page tree, and sections of consecutive numbers that the file has.
std::string tableOf(const PlainFile& file, const std::vector<int>& numbers, int pages, size_t position) {
    std::string table = "\n" + std::to_string(pages) + std::string(emptyPages);
    const size_t start = position + table.size();
    table += "xref\n";
    for (auto from = numbers.begin(); from != numbers.end();) {
        auto to = from;
        std::string entries;
        for (int number = *from; to != numbers.end() && *to == number; ++to, ++number) {
            const auto entry = file.entry(number);
            if (!entry)
                break;
            entries += number == pages ? entryAt(position + 1) : *entry;
        }
        if (to != from)
            table += std::to_string(*from) + ' ' + std::to_string(to - from) + '\n' + entries;
        from = to == from ? to + 1 : to;
    }
    const int size = numbers.empty() ? 1 : numbers.back() + 1;
    return table + "trailer\n<< /Size " + std::to_string(size) + " /Root " + std::to_string(file.catalog()) +
           " 0 R >>\nstartxref\n" + std::to_string(start) + "\n%%EOF\n";
}

}  // namespace

std::optional<PlainPart> partOf(const PlainFile& file, const PageOutline& outline, qsizetype firstPage,
                                qsizetype pageCount, size_t position) {
    try {
        Search search(file);
        search.addDocument();
        const qsizetype end = std::min(firstPage + pageCount, outline.pageCount());
        qsizetype page = firstPage;
        for (; page < end; ++page) {
            const size_t before = search.count();
            if (page > firstPage && before > mostObjects / 2)
                break;
            search.addPage(outline.number(page), outline.attributes(page));
        }
        return PlainPart{firstPage, page - firstPage,
                         tableOf(file, search.found(), search.pages(), position)};
    } catch (const NotPlain&) {
        return std::nullopt;
    }
}

}  // namespace vellmora
