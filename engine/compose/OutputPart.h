#pragma once

#include "engine/appearance/Annotations.h"
#include "engine/compose/PageForm.h"
#include "engine/file/ParsedFile.h"
#include "engine/objects/Qpdf.h"
#include "engine/output/ObjectCopier.h"

#include <map>
#include <memory>
#include <set>
#include <string>

namespace vellmora {

/// Pages of a new file that are put together and written at once, and what was read for them. Most files are
/// one part; one of very many objects is written part by part, since the PDF library keeps some two kilobytes
/// of each object.
struct OutputPart {
    explicit OutputPart(const WrittenObjects& written)
        : copier(output, written), resources(copier), appearances(copier) {
        output.emptyPDF();
        pages = output.getRoot().getKey("/Pages");
    }

    /// What is copied from them is read when the part is written.
    std::set<std::shared_ptr<const ParsedFile>> sources;
    QPDF output;
    ObjectCopier copier;
    BoxArrays boxes;
    PageResources resources;
    Appearances appearances;
    std::set<QPDFObjGen> replacedProfiles;
    QPDFObjectHandle pages;  ///< stands for the root of the page tree
    size_t pageCount = 0;
};

}  // namespace vellmora
