#pragma once

#include "engine/compose/PageForm.h"
#include "engine/file/PageOutline.h"
#include "engine/output/PlainCopier.h"
#include "pdf/PDFPage.h"

#include <map>
#include <optional>
#include <string>

namespace vellmora {

/// A page that was put into a new file in words.
struct PageInWords {
    int form = 0;  ///< the number of its content as a form, which is written with all that it leads to
    std::map<std::string, std::string> entries;  ///< of its dictionary, each with its text
    bool mayHaveAnnotations = false;             ///< that are to be painted
};

/// Puts pages of plain files into a new file in the words of their own, without the PDF library. What it
/// writes is what `makePageForm` and its kind have the library write.
class PlainPages {
public:
    PlainPages(FileWriter& file, WrittenObjects& written) : m_file(file), m_copier(file, written) {}

    /// Nothing where the page is left to the library, since something that it leads to is not plain. Then
    /// nothing is written of it. `copies` are the library's, of the part; null where it has made none.
    std::optional<PageInWords> draw(const OutlinedPage& page, DisplayBox box, const ObjectCopier* copies);
    /// A box of a page as text.
    const std::string& textOf(const Rect& box) { return m_boxes.textOf(box); }

private:
    void readContent(const PlainFile& file);
    void readResources(const OutlinedPage& page);
    void readGroup(const PlainFile& file);
    std::map<std::string, std::string> attributes(const OutlinedPage& page, DisplayBox box);
    std::string textOf(const PlainWords& words);
    int writeForm(const OutlinedPage& page);

    FileWriter& m_file;
    PlainCopier m_copier;
    BoxArrays m_boxes;
    PlainObject m_page;
    PlainObject m_object;
    PlainContent m_content;
    PlainWords m_resources;
    PlainWords m_group;
};

}  // namespace vellmora
