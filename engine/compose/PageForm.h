#pragma once

#include "base/Rect.h"
#include "engine/compose/PageResources.h"
#include "engine/file/PageOrientation.h"
#include "engine/file/ParsedFile.h"
#include "engine/objects/PDFValues.h"
#include "engine/output/ObjectCopier.h"

#include <array>
#include <functional>
#include <map>
#include <string>

namespace vellmora {

/// The arrays that stand for the boxes of pages: one for all pages of a size, however many there are.
class BoxArrays {
public:
    const QPDFObjectHandle& of(const Rect& box) {
        const auto [entry, isNew] = m_arrays.try_emplace({box.x, box.y, box.width, box.height});
        if (isNew)
            entry->second = arrayOf(box);
        return entry->second;
    }
    const std::string& textOf(const Rect& box);

private:
    using Box = std::array<double, 4>;
    std::map<Box, QPDFObjectHandle> m_arrays;
    std::map<Box, std::string> m_texts;
};

/// What of a page its form paints: a little more than its media box.
Rect formBox(const PageOrientation& page);

/// A page's content where that is one plain stream.
struct PlainContent {
    PlainWords filters;  ///< the entries that say how it is compressed
    StoredBytes data{};
    Packing packing = Packing::asTheyAre;
};

/// Reads the content stream of that number. Throws `NotPlain`.
PlainContent plainContent(int number, const PlainFile& file);

/// The content of a page as one form XObject of the output. As a form it cannot disturb what is drawn after
/// it, even where its operators are not balanced. One content stream passes through as it is, still
/// compressed and byte for byte, also where it is damaged; several are joined.
/// `file` is the short way to what the page refers to; null where there is none.
/// `onIncomplete` is called, when the output is written, where some of it cannot be decoded for that.
QPDFObjectHandle makePageForm(ObjectCopier& copier, BoxArrays& boxes, PageResources& resources,
                              const ParsedPage& page, const PlainFile* file,
                              std::function<void()> onIncomplete);

}  // namespace vellmora
