#include "engine/file/OutlineReader.h"

#include "engine/file/PageAttributes.h"
#include "pdf/DocumentMessages.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <utility>

namespace vellmora {

namespace {

/// More kinds of pages than this are none of a real document.
constexpr size_t mostKinds = 10000;

void require(bool isPlain) {
    if (!isPlain)
        throw NotPlain();
}

}  // namespace

void OutlineReader::AttributeTexts::takeOwn(const PlainObject& node) {
    for (const auto& [key, value] : node.entries()) {
        if (value == "null")
            continue;
        if (key == "/MediaBox")
            mediaBox = value;
        else if (key == "/CropBox")
            cropBox = value;
        else if (key == "/Rotate")
            rotate = value;
    }
}

void OutlineReader::AttributeTexts::takeResources(const PlainObject& node) {
    const std::string_view own = node.entry("/Resources");
    if (!own.empty() && own != "null")
        outerResources = std::exchange(resources, own);
}

PageOutline::Attributes OutlineReader::AttributeTexts::attributes() const {
    const PageFrame frame(plainBox(mediaBox), plainBox(cropBox), plainRotation(rotate));
    return {frame.orientation, frame.cropBox, frame.statedCropBox, resources, outerResources};
}

OutlineReader::OutlineReader(const PlainFile& file, PageOutline& outline)
    : m_file(file), m_outline(outline), m_isKnown(static_cast<size_t>(file.size())) {}

bool OutlineReader::readUpTo(qsizetype pageCount) {
    try {
        m_file.beginReading();
        if (!m_isBegun)
            begin();
        while (!m_steps.empty() && m_outline.pageCount() < pageCount) {
            const Step step = m_steps.back();
            m_steps.pop_back();
            enter(step);
        }
        require(!isComplete() || m_statedCount == m_outline.pageCount());
        return true;
    } catch (const NotPlain&) {
        return false;
    }
}

void OutlineReader::begin() {
    m_file.read(m_file.catalog(), m_object);
    enter({plainReference(m_object.entry("/Pages")), {}});
    m_statedCount = plainNumber(m_object.entry("/Count"));
    require(m_statedCount > 0);
    m_isBegun = true;
}

void OutlineReader::enter(const Step& step) {
    require(step.number > 0 && step.number < m_file.size() && !m_isKnown[static_cast<size_t>(step.number)]);
    m_isKnown[static_cast<size_t>(step.number)] = true;
    m_file.read(step.number, m_object);
    require(m_object.isDictionary() && !m_object.isStream());
    AttributeTexts texts = step.inherited;
    texts.takeOwn(m_object);
    const std::string_view kids = m_object.entry("/Kids");
    const std::string_view type = m_object.entry("/Type");
    if (kids.empty()) {
        require(type == "/Page");
        return addPage(step.number, texts);
    }
    require(type == "/Pages");
    texts.takeResources(m_object);
    enterKids(kids, texts);
}

void OutlineReader::enterKids(std::string_view kids, const AttributeTexts& texts) {
    require(kids.starts_with('['));
    m_kids.readValue(kids);
    const std::vector<int>& numbers = m_kids.references();
    require(kids.find_first_of("[<", 1) == std::string_view::npos && m_kids.items().size() == numbers.size());
    // The first one is to be the next.
    std::transform(numbers.rbegin(), numbers.rend(), std::back_inserter(m_steps), [&texts](int number) {
        return Step{number, texts};
    });
}

void OutlineReader::addPage(int number, const AttributeTexts& texts) {
    require(m_outline.m_pages.size() < static_cast<size_t>(maxPageCount));
    m_outline.m_pages.push_back({number, kindOf(texts)});
}

int OutlineReader::kindOf(const AttributeTexts& texts) {
    m_key.clear();
    for (const std::string_view text : {texts.mediaBox, texts.cropBox, texts.rotate})
        m_key.append(text).append(1, '|');
    for (const std::string_view text : {texts.resources, texts.outerResources})
        m_key.append(std::to_string(reinterpret_cast<std::uintptr_t>(text.data()))).append(1, '|');
    if (m_key == m_lastKey)
        return m_lastKind;
    const auto [kind, isNew] = m_kinds.try_emplace(m_key, static_cast<int>(m_outline.m_attributes.size()));
    if (isNew) {
        require(m_kinds.size() <= mostKinds);
        m_outline.m_attributes.push_back(texts.attributes());
    }
    m_lastKey = m_key;
    return m_lastKind = kind->second;
}

}  // namespace vellmora
