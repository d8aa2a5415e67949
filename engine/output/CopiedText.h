#pragma once

#include "engine/objects/Qpdf.h"
#include "engine/output/StoredStreams.h"

#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace vellmora {

/// The words of an object of the output with gaps, where the numbers of other objects belong that are not
/// known before the output is written.
struct CopiedText {
    struct Gap {
        size_t position = 0;  ///< in the text
        QPDFObjectHandle object;
    };

    std::string text;
    std::vector<Gap> gaps;  ///< in the order of their positions
    std::optional<StoredBytes>
        data{};                    ///< of a stream; the text has its entries, but no brackets and no length
    bool isSharedByPages = false;  ///< also with pages that are written later
};

/// Objects of the output that are put into words at once, by their number in the output. What libqpdf has
/// under that number only stands for them.
class CopiedTexts {
public:
    /// A new object of the output, whose text is "null" so far.
    QPDFObjectHandle makeObject(QPDF& output) {
        const QPDFObjectHandle object = output.makeIndirectObject(QPDFObjectHandle::newInteger(0));
        set(object, {"null", {}});
        return object;
    }
    void set(const QPDFObjectHandle& object, CopiedText text) {
        m_texts[object.getObjGen().getObj()] = std::move(text);
    }
    /// Null for an object that libqpdf has.
    const CopiedText* find(const QPDFObjectHandle& object) const {
        const auto found = m_texts.find(object.getObjGen().getObj());
        return found == m_texts.end() ? nullptr : &found->second;
    }

private:
    std::unordered_map<int, CopiedText> m_texts;
};

}  // namespace vellmora
