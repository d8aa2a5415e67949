#pragma once

#include "engine/file/PageOutline.h"
#include "engine/file/PlainFile.h"

#include <optional>
#include <string>

namespace vellmora {

/// Some pages of a plain file and all that can be reached from them: what the PDF library needs to know of a
/// file to draw these pages.
struct PlainPart {
    qsizetype firstPage = 0;
    qsizetype pageCount = 0;
    /// To stand behind the content at `position`: a root of the page tree that has no pages, a
    /// cross-reference table that names this root, the objects of the part and no others, and the file's last
    /// line.
    std::string table;
};

/// The part of a page and as many of those that follow as have room in it, at most `pageCount`. Nothing where
/// the page is not plain, or needs very many objects.
std::optional<PlainPart> partOf(const PlainFile& file, const PageOutline& outline, qsizetype firstPage,
                                qsizetype pageCount, size_t position);

}  // namespace vellmora
