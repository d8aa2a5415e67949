#pragma once

#include "platform/pdf/PDFSource.h"

#include <vector>

namespace vellmora {

/// All pages in reading order, as mature viewers find them: loops in the tree and kids that are no
/// dictionaries are passed over, a page that stands in the tree twice is shown twice, and where the tree
/// leads to no page the file's page objects are taken in the order of their numbers. The depth of the tree is
/// not bounded.
std::vector<SourcePage> collectPages(QPDF& qpdf);

}  // namespace vellmora
