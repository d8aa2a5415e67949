#pragma once

#include "engine/file/PageOutline.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace vellmora {

/// Reads the outline of a file, from the first page on, and may rest on the way: the first page of a long
/// document is known long before all of them are.
class OutlineReader {
public:
    /// Both must outlive the object; what is known of the outline so far is in it.
    OutlineReader(const PlainFile& file, PageOutline& outline);

    /// Goes on until at least so many pages are known, or all. False where anything about the tree is odd, or
    /// may be damaged: a kid is missing, or stands there twice, or /Count is wrong. Nothing more can be done
    /// with the object then. Throws `Error` where the file cannot be read.
    bool readUpTo(qsizetype pageCount);
    bool isComplete() const { return m_isBegun && m_steps.empty(); }
    /// What the tree says of itself, once a page is known.
    qsizetype statedCount() const { return m_statedCount; }

private:
    /// The texts of attributes that hold for the kids of a node.
    struct AttributeTexts {
        std::string_view mediaBox;
        std::string_view cropBox;
        std::string_view rotate;
        std::string_view resources;
        std::string_view outerResources;

        void takeOwn(const PlainObject& node);
        void takeResources(const PlainObject& node);
        PageOutline::Attributes attributes() const;
    };
    struct Step {
        int number;
        AttributeTexts inherited;
    };

    void begin();
    void enter(const Step& step);
    void enterKids(std::string_view kids, const AttributeTexts& texts);
    void addPage(int number, const AttributeTexts& texts);
    int kindOf(const AttributeTexts& texts);

    const PlainFile& m_file;
    PageOutline& m_outline;
    bool m_isBegun = false;
    qsizetype m_statedCount = 0;
    std::vector<bool> m_isKnown;  ///< by number: stands in the tree
    PlainObject m_object;
    PlainObject m_kids;
    std::vector<Step> m_steps;
    std::map<std::string, int> m_kinds;
    std::string m_key;
    std::string m_lastKey;
    int m_lastKind = 0;
};

}  // namespace vellmora
