#pragma once

#include "base/Rect.h"
#include "engine/file/PageOrientation.h"
#include "engine/file/PlainFile.h"

#include <string_view>
#include <vector>

namespace vellmora {

/// The pages of a plain file whose page tree is sound in every point. Each page object was read, so none is
/// lost. What is kept of a page is eight bytes.
class PageOutline {
public:
    /// What pages have in common. The texts are the file's.
    struct Attributes {
        PageOrientation orientation;
        Rect cropBox;
        std::optional<Rect> statedCropBox;
        /// The values of /Resources that the nodes above state, the nearest and the one above it; empty where
        /// there is none.
        std::string_view resources;
        std::string_view outerResources;
    };

    qsizetype pageCount() const { return static_cast<qsizetype>(m_pages.size()); }
    /// The number of the page's object.
    int number(qsizetype index) const { return m_pages[static_cast<size_t>(index)].number; }
    const Attributes& attributes(qsizetype index) const {
        return m_attributes[static_cast<size_t>(m_pages[static_cast<size_t>(index)].attributes)];
    }

private:
    friend class OutlineReader;
    struct Page {
        int number;
        int attributes;
    };
    std::vector<Page> m_pages;
    std::vector<Attributes> m_attributes;
};

/// A page of a plain file.
struct OutlinedPage {
    const PlainFile* file = nullptr;
    int number = 0;  ///< of its object
    const PageOutline::Attributes* attributes = nullptr;
};

}  // namespace vellmora
