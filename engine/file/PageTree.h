#pragma once

#include "engine/file/ParsedFile.h"

#include <vector>

namespace vellmora {

/// All pages in reading order, as mature viewers find them: kids that are no dictionaries are passed over,
/// loops in the tree are cut, and what stands in it twice is shown twice. A page that the tree names and
/// counts but the file has lost is there as a blank one. Where the tree leads to no page, the file's page
/// objects are taken in the order of their numbers. The depth of the tree is not bounded.
std::vector<ParsedPage> collectPages(QPDF& qpdf);

}  // namespace vellmora
