#include "engine/file/PageTree.h"

#include "engine/file/PageAttributes.h"

#include <algorithm>
#include <optional>
#include <set>
#include <utility>

namespace vellmora {

namespace {

/// Goes through a page tree without recursion: a hostile one is deep.
class TreeWalk {
public:
    explicit TreeWalk(const QPDFObjectHandle& root) { m_steps.push_back({root, {}, false, false}); }

    std::vector<ParsedPage> pages() {
        while (!m_steps.empty()) {
            const Step step = std::move(m_steps.back());
            m_steps.pop_back();
            if (step.leaves)
                m_open.erase(step.node.getObjGen());
            else
                enter(step);
        }
        return std::move(m_pages);
    }

private:
    struct Step {
        QPDFObjectHandle node;
        InheritedAttributes inherited;
        bool isRepeat;  ///< the walk has been inside of a node above before
        bool leaves;
    };

    /// Nodes may stand in the tree more than once, but a small file must not grow to millions of pages. This
    /// is how many kids are looked at again.
    static constexpr int maxRepeats = 10000;

    void enter(const Step& step) {
        QPDFObjectHandle node = step.node;
        if (!node.isDictionary()) {
            // A reference to an object that the file does not have is a plain null from libqpdf 12 on.
            if (node.isIndirect() || node.isNull())
                addLostPage(step.inherited);
            return;
        }
        const InheritedAttributes attributes = step.inherited.overriddenBy(node);
        QPDFObjectHandle kids = node.getKey("/Kids");
        if (kids.isArray())
            enterKids(node, kids, attributes, step.isRepeat);
        else if (!node.isDictionaryOfType("/Pages") && !node.isDictionaryOfType("/Catalog"))
            m_pages.push_back(makePage(node, attributes));
    }

    void addLostPage(const InheritedAttributes& inherited) {
        m_pages.push_back(makePage(QPDFObjectHandle::newDictionary(), inherited));
        m_pages.back().isLost = true;
    }

    /// A loop leads through a node or an array of kids that is an object of its own.
    void enterKids(const QPDFObjectHandle& node, QPDFObjectHandle kids, const InheritedAttributes& attributes,
                   bool isRepeat) {
        for (const QPDFObjectHandle& part : {node, kids}) {
            if (!part.isIndirect())
                continue;
            if (!m_open.insert(part.getObjGen()).second)
                return;
            m_steps.push_back({part, {}, false, true});
            isRepeat |= !m_visited.insert(part.getObjGen()).second;
        }
        const int count = kids.getArrayNItems();
        if (isRepeat && (m_repeats += static_cast<size_t>(count) + 1) > maxRepeats)
            return;
        for (int i = count - 1; i >= 0; --i)
            m_steps.push_back({kids.getArrayItem(i), attributes, isRepeat, false});
    }

    std::vector<Step> m_steps;
    std::set<QPDFObjGen> m_visited;
    std::set<QPDFObjGen> m_open;  ///< nodes and arrays of kids that the walk is inside of
    size_t m_repeats = 0;
    std::vector<ParsedPage> m_pages;
};

/// Lost pages count only where the tree states that there are more pages than there are left: otherwise they
/// were deleted.
void dropDeletedPages(std::vector<ParsedPage>& pages, QPDFObjectHandle root) {
    QPDFObjectHandle count = root.getKey("/Count");
    const auto left =
        std::count_if(pages.begin(), pages.end(), [](const auto& page) { return !page.isLost; });
    if (left == 0 || !count.isInteger() || count.getIntValue() <= left)
        pages.erase(std::remove_if(pages.begin(), pages.end(), [](const auto& page) { return page.isLost; }),
                    pages.end());
}

/// The page's own attributes and those of the nodes above it, which may be in a loop.
InheritedAttributes attributesFromParents(const QPDFObjectHandle& page) {
    constexpr size_t greatestHeight = 100;
    std::vector<QPDFObjectHandle> nodes;
    for (QPDFObjectHandle node = page; node.isDictionary() && nodes.size() < greatestHeight;
         node = node.getKey("/Parent"))
        nodes.push_back(node);
    InheritedAttributes attributes;
    std::reverse(nodes.begin(), nodes.end());
    for (const QPDFObjectHandle& node : nodes)
        attributes = attributes.overriddenBy(node);
    return attributes;
}

std::vector<ParsedPage> scanForPages(QPDF& qpdf) {
    std::vector<ParsedPage> pages;
    std::vector<QPDFObjectHandle> objects = qpdf.getAllObjects();
    for (QPDFObjectHandle& object : objects) {
        if (object.isDictionaryOfType("/Page"))
            pages.push_back(makePage(object, attributesFromParents(object)));
    }
    return pages;
}

}  // namespace

std::vector<ParsedPage> collectPages(QPDF& qpdf) {
    const QPDFObjectHandle root = qpdf.getRoot().getKey("/Pages");
    std::vector<ParsedPage> pages = TreeWalk(root).pages();
    dropDeletedPages(pages, root);
    return pages.empty() ? scanForPages(qpdf) : pages;
}

}  // namespace vellmora
