#include "engine/compose/PlainPages.h"

#include "engine/appearance/Annotations.h"
#include "engine/file/PageAttributes.h"

#include <string_view>
#include <utility>

namespace vellmora {

namespace {

void require(bool isPlain) {
    if (!isPlain)
        throw NotPlain();
}

/// Reads a value that is a dictionary, or a reference to one, and adds its words. Answers the dictionary.
void addDictionary(PlainWords& words, std::string_view value, const PlainFile& file,
                   PlainObject& dictionary) {
    const int number = plainReference(value);
    if (number > 0)
        file.read(number, dictionary);
    else
        dictionary.readValue(value);
    require(dictionary.isDictionary() && !dictionary.isStream());
    if (number > 0)
        words.push_back({{}, number});
    else
        addPlainWords(words, dictionary, file);
}

}  // namespace

std::optional<PageInWords> PlainPages::draw(const OutlinedPage& page, DisplayBox box,
                                            const ObjectCopier* copies) {
    const PlainFile& file = *page.file;
    m_copier.begin(file, copies);
    try {
        file.read(page.number, m_page);
        readContent(file);
        readResources(page);
        readGroup(file);
        PageInWords result{0, attributes(page, box)};
        m_copier.read(m_resources);
        m_copier.read(m_group);
        m_copier.write();
        if (!m_group.empty())
            result.entries["/Group"] = textOf(m_group);
        result.form = writeForm(page);
        result.mayHaveAnnotations = !hasPlainlyNoVisibleAnnotations(m_page, file);
        return result;
    } catch (const NotPlain&) {
        return std::nullopt;
    }
}

/// One stream, or an array of one.
void PlainPages::readContent(const PlainFile& file) {
    std::string_view contents = m_page.entry("/Contents");
    if (contents.starts_with('[')) {
        m_object.readValue(contents);
        require(m_object.items().size() == 1);
        contents = m_object.items().front();
    }
    const int number = plainReference(contents);
    require(number > 0);
    m_content = plainContent(number, file);
}

/// Few enough that nobody would look for those that are not used.
void PlainPages::readResources(const OutlinedPage& page) {
    m_resources.clear();
    std::string_view resources = m_page.entry("/Resources");
    if (resources.empty() || resources == "null")
        resources = page.attributes->resources;
    if (resources.empty()) {
        m_resources = {{"<<"}, {">>"}};
        return;
    }
    addDictionary(m_resources, resources, *page.file, m_object);
    require(hasFewEntries(m_object, *page.file));
}

void PlainPages::readGroup(const PlainFile& file) {
    m_group.clear();
    const std::string_view group = m_page.entry("/Group");
    if (!group.empty() && group != "null")
        addDictionary(m_group, group, file, m_object);
}

std::map<std::string, std::string> PlainPages::attributes(const OutlinedPage& page, DisplayBox box) {
    std::map<std::string, std::string> entries;
    const PageOutline::Attributes& attributes = *page.attributes;
    const bool isWhole = box == DisplayBox::mediaBox;
    entries["/MediaBox"] = textOf(isWhole ? attributes.orientation.mediaBox() : attributes.cropBox);
    if (attributes.orientation.rotation() != 0)
        entries["/Rotate"] = std::to_string(attributes.orientation.rotation());
    if (isWhole && attributes.statedCropBox)
        entries["/CropBox"] = textOf(*attributes.statedCropBox);
    for (const char* key : {"/BleedBox", "/TrimBox", "/ArtBox"}) {
        if (const auto stated = isWhole ? plainBox(m_page.entry(key)) : std::nullopt)
            entries[key] = textOf(*stated);
    }
    if (const std::string_view unit = m_page.entry("/UserUnit"); !unit.empty()) {
        require(m_page.isVerbatim() && unit.find_first_not_of("-.0123456789") == std::string_view::npos);
        entries["/UserUnit"] = unit;
    }
    return entries;
}

std::string PlainPages::textOf(const PlainWords& words) {
    ObjectText text;
    m_copier.addTo(text, words);
    return text.text();
}

/// Entry by entry in the order in which files get them.
int PlainPages::writeForm(const OutlinedPage& page) {
    const int number = m_file.numbers().reserve();
    ObjectText text;
    text.add("/BBox");
    text.add(m_boxes.textOf(formBox(page.attributes->orientation)));
    text.addNumbered(m_content.filters, [](int) { return 0; });
    text.add("/Resources");
    m_copier.addTo(text, m_resources);
    text.add("/Subtype/Form/Type/XObject");
    m_file.writeReserved(number, text.text(), m_content.data.bytes(), m_content.packing);
    return number;
}

}  // namespace vellmora
