#include "engine/compose/ComposerWriter.h"

#include "engine/compose/PageForm.h"
#include "engine/objects/ContentText.h"
#include "engine/output/FileWriter.h"
#include "engine/output/OutputStreams.h"
#include "engine/output/PictureObject.h"
#include "picture/PictureEncoding.h"

#include <exception>
#include <new>
#include <utility>

namespace vellmora {

namespace {

/// From so many on a part is written.
constexpr size_t mostObjectsInPart = 5000;
/// Each is kept open until then: some tens of kilobytes.
constexpr size_t mostSourcesOfPart = 64;
/// The page, and its content as a form.
constexpr size_t objectsOfPage = 2;
/// Contents of pages that are kept to find others that are the same.
constexpr size_t mostContents = 1000;

/// Among the resources of a page.
std::string nameOf(int picture) {
    return "/S" + std::to_string(picture);
}

}  // namespace

PageComposer::Writer::Writer(PDFDataConsumer& consumer)
    : m_consumer(consumer),
      m_file(consumer),
      m_plainPages(m_file, m_written),
      m_catalogNumber(m_file.numbers().reserve()),
      m_pagesNumber(m_file.numbers().reserve()) {}

/// Where all pages are plain there is none.
OutputPart& PageComposer::Writer::part() {
    if (!m_part)
        m_part = std::make_unique<OutputPart>(m_written);
    return *m_part;
}

void PageComposer::Writer::beginPage() {
    m_page = OpenPage();
}

void PageComposer::Writer::drawPage(const ParsedDocument& document, qsizetype index, DisplayBox box) {
    if (!drawInWords(document, index, box))
        drawByLibrary(document.fileOf(index), index, box);
}

bool PageComposer::Writer::drawInWords(const ParsedDocument& document, qsizetype index, DisplayBox box) {
    const std::optional<OutlinedPage> page = document.outlinedPage(index);
    if (!page)
        return false;
    usePlainFile(document, index, *page->file);
    m_page.words = m_plainPages.draw(*page, box, m_part ? &m_part->copier : nullptr);
    if (!m_page.words)
        return false;
    m_page.fromPageSpace = page->attributes->orientation.fromPageSpace();
    m_page.content += paintObject("/P", {});
    if (m_page.words->mayHaveAnnotations) {
        const std::shared_ptr<const ParsedFile> source = document.fileOf(index);
        drawFrom(source, [&] { attempt([&] { drawAnnotations(*source, source->page(index)); }); });
    }
    return true;
}

/// What holds for all its pages is the library's to read.
void PageComposer::Writer::usePlainFile(const ParsedDocument& document, qsizetype index,
                                        const PlainFile& file) {
    if (!m_plainFiles.insert(&file).second)
        return;
    file.beginReading();
    PlainObject catalog;
    file.read(file.catalog(), catalog);
    if (m_hasCatalog || (catalog.entry("/OCProperties").empty() && catalog.entry("/OutputIntents").empty()))
        return;
    const std::shared_ptr<const ParsedFile> source = document.fileOf(index);
    useSource(source);
    attempt([&] { carryDocumentAttributes(*source); });
}

void PageComposer::Writer::drawByLibrary(const std::shared_ptr<const ParsedFile>& file, qsizetype index,
                                         DisplayBox box) {
    const ParsedPage& page = file->page(index);
    m_page.fromPageSpace = page.orientation.fromPageSpace();
    drawFrom(file, [&] { drawParts(*file, page, box); });
}

/// Draws once more what was drawn with objects that the library had given up.
void PageComposer::Writer::drawFrom(const std::shared_ptr<const ParsedFile>& file,
                                    const std::function<void()>& draw) {
    useSource(file);
    part().copier.beginStep();
    const OpenPage begun = m_page;
    draw();
    if (file->bringBackObjects()) {
        part().copier.forgetStep();
        part().resources.forget();
        m_page = begun;
        draw();
    }
    numberStandIns();
}

/// Before anybody asks for their numbers.
void PageComposer::Writer::numberStandIns() {
    for (const auto& [object, number] : part().copier.takeStandIns())
        m_file.numbers().set(object, number);
}

void PageComposer::Writer::drawParts(const ParsedFile& source, const ParsedPage& page, DisplayBox box) {
    attempt([&] { carryPageAttributes(page, box); });
    attempt([&] { carryDocumentAttributes(source); });
    attempt([&] { drawContent(source, page); });
    attempt([&] { drawAnnotations(source, page); });
}

/// Runs one step of drawing. What a damaged source cannot give is left out; the rest of the page is drawn. A
/// sound page must not be left out for want of memory.
void PageComposer::Writer::attempt(const std::function<void()>& step) {
    try {
        step();
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception&) {
        m_page.isIncomplete = true;
    }
}

void PageComposer::Writer::useSource(const std::shared_ptr<const ParsedFile>& file) {
    if (part().sources.insert(file).second)
        part().copier.addFile(*file);
}

void PageComposer::Writer::carryPageAttributes(const ParsedPage& page, DisplayBox box) {
    m_page.mediaBox = box == DisplayBox::mediaBox ? page.orientation.mediaBox() : page.cropBox;
    if (page.orientation.rotation() != 0)
        m_page.entries["/Rotate"] = QPDFObjectHandle::newInteger(page.orientation.rotation());
    if (box == DisplayBox::mediaBox)
        carryInnerBoxes(page);
    QPDFObjectHandle userUnit = page.entry("/UserUnit");
    if (userUnit.isNumber())
        m_page.entries["/UserUnit"] = part().copier.copy(userUnit);
    QPDFObjectHandle group = page.entry("/Group");
    if (group.isDictionary())
        m_page.entries["/Group"] = part().copier.copy(group);
}

/// What is shown of the page, and what a printer makes of it. Each box is carried over as it is stated, so
/// that a reader that sees it in its own way sees it in the same way afterwards. Only the crop box may be
/// stated by a node above the page (ISO 32000-2, table 31).
void PageComposer::Writer::carryInnerBoxes(const ParsedPage& page) {
    if (page.statedCropBox)
        m_page.entries["/CropBox"] = part().boxes.of(*page.statedCropBox);
    for (const char* key : {"/BleedBox", "/TrimBox", "/ArtBox"}) {
        if (const std::optional<Rect> box = boxOf(page.entry(key)))
            m_page.entries[key] = part().boxes.of(*box);
    }
}

/// Its layers, and what its colours are meant for.
void PageComposer::Writer::carryDocumentAttributes(const ParsedFile& source) {
    if (m_hasCatalog)
        return;
    QPDFObjectHandle root = part().output.getRoot();
    for (const char* key : {"/OCProperties", "/OutputIntents"}) {
        QPDFObjectHandle value = source.catalog().getKey(key);
        if (!value.isNull() && !root.hasKey(key))
            root.replaceKey(key, part().copier.copy(value));
    }
}

void PageComposer::Writer::drawContent(const ParsedFile& source, const ParsedPage& page) {
    const qsizetype index = m_pageCount;
    paint("/P",
          makePageForm(part().copier, part().boxes, part().resources, page, source.plainFile(),
                       [this, index] { m_incompletePages.insert(index); }),
          {});
}

void PageComposer::Writer::drawAnnotations(const ParsedFile& source, const ParsedPage& page) {
    for (const Annotation& annotation : visibleAnnotations(page)) {
        attempt([&] {
            if (const auto appearance = part().appearances.make(annotation, source, page))
                paintAnnotation(*appearance, annotation.entry("/OC"));
        });
    }
}

/// An annotation of a layer is painted as marked content of that layer.
void PageComposer::Writer::paintAnnotation(const AnnotationAppearance& appearance, QPDFObjectHandle layer) {
    const std::string name = "/A" + std::to_string(m_page.annotationCount++);
    if (!layer.isDictionary()) {
        paint(name, appearance.form, appearance.matrix);
        return;
    }
    m_page.layers[name] = part().copier.copy(layer);
    m_page.content += "/OC " + name + " BDC\n";
    paint(name, appearance.form, appearance.matrix);
    m_page.content += "EMC\n";
}

int PageComposer::Writer::addPicture(PictureMaker picture) {
    m_pictures.push_back({std::move(picture)});
    return static_cast<int>(m_pictures.size()) - 1;
}

void PageComposer::Writer::drawPicture(int picture, const Rect& rect) {
    const Matrix unitSquareToRect{rect.width, 0, 0, rect.height, rect.x, rect.y};
    static_cast<void>(m_pictures.at(static_cast<size_t>(picture)));
    m_page.pictures.insert(picture);
    m_page.content += paintObject(nameOf(picture), unitSquareToRect * m_page.fromPageSpace);
}

void PageComposer::Writer::paint(const std::string& name, const QPDFObjectHandle& object,
                                 const Matrix& matrix) {
    m_page.objects[name] = object;
    m_page.content += paintObject(name, matrix);
}

void PageComposer::Writer::endPage() {
    const int number = m_page.words ? pageInWords() : m_file.numbers().of(pageObject());
    m_kidsText += std::to_string(number) + " 0 R ";
    if (m_page.isIncomplete)
        m_incompletePages.insert(m_pageCount);
    ++m_pageCount;
    m_page = {};
    if (!m_part)
        return;
    const size_t objectCount = m_part->copier.count() + objectsOfPage * m_part->pageCount;
    if (objectCount > mostObjectsInPart || m_part->sources.size() == mostSourcesOfPart)
        writePart();
}

/// Answers the page's number.
int PageComposer::Writer::pageInWords() {
    std::map<std::string, std::string>& entries = m_page.words->entries;
    entries["/Type"] = "/Page";
    entries["/Parent"] = std::to_string(m_pagesNumber) + " 0 R";
    entries["/Resources"] = resourcesInWords();
    entries["/Contents"] = std::to_string(contentStream(m_page.content)) + " 0 R";
    ObjectText text;
    text.add("<<");
    for (const auto& [key, value] : entries) {
        text.add(key);
        text.add(value);
    }
    text.add(">>");
    const int number = m_file.numbers().reserve();
    m_file.writeReserved(number, text.text());
    return number;
}

std::string PageComposer::Writer::resourcesInWords() {
    ObjectText text(m_file.numbers());
    text.add("<<");
    if (!m_page.layers.empty()) {
        text.add("/Properties");
        text.addDictionary(m_page.layers);
    }
    text.add("/XObject<<");
    for (const auto& [name, object] : m_page.objects) {
        text.add(name);
        text.addValue(object);
    }
    text.add("/P");
    text.addReference(m_page.words->form);
    for (const int index : m_page.pictures) {
        PictureInWork& picture = m_pictures[static_cast<size_t>(index)];
        if (picture.number == 0)
            picture.number = m_file.numbers().reserve();
        text.add(nameOf(index));
        text.addReference(picture.number);
    }
    text.add(">>>>");
    return text.text();
}

/// Pages that are drawn alike (no stamp, or the same one at the same place) share their content stream.
int PageComposer::Writer::contentStream(const std::string& content) {
    if (m_contents.size() > mostContents)
        m_contents.clear();
    const auto [known, isNew] = m_contents.try_emplace(content);
    if (isNew) {
        known->second = m_file.numbers().reserve();
        m_file.writeReserved(known->second, {}, content, Packing::compress);
    }
    return known->second;
}

/// In words, unless it holds colours that may have to be replaced in the end.
QPDFObjectHandle PageComposer::Writer::pageObject() {
    QPDFObjectHandle objects = QPDFObjectHandle::newDictionary(m_page.objects);
    for (const int index : m_page.pictures) {
        PictureInWork& picture = m_pictures[static_cast<size_t>(index)];
        if (!picture.object)
            picture.object = part().output.newStream();
        objects.replaceKey(nameOf(index), *picture.object);
    }
    QPDFObjectHandle resources = QPDFObjectHandle::newDictionary();
    resources.replaceKey("/XObject", objects);
    if (!m_page.layers.empty())
        resources.replaceKey("/Properties", QPDFObjectHandle::newDictionary(m_page.layers));
    m_page.entries["/Type"] = QPDFObjectHandle::newName("/Page");
    m_page.entries["/Parent"] = part().pages;
    m_page.entries["/MediaBox"] = part().boxes.of(m_page.mediaBox);
    m_page.entries["/Resources"] = resources;
    m_page.entries["/Contents"] = part().output.newStream();
    m_file.numbers().set(m_page.entries["/Contents"], contentStream(m_page.content));
    ++part().pageCount;
    if (m_page.entries.contains("/Group"))
        return part().output.makeIndirectObject(QPDFObjectHandle::newDictionary(m_page.entries));
    ObjectText text;
    text.addDictionary(m_page.entries);
    return part().copier.add(text.take());
}

/// The catalog comes with the first part, the root of the page tree when all pages are known.
void PageComposer::Writer::writePart() {
    fillPart();
    m_file.numbers().set(m_part->pages, m_pagesNumber);
    if (!std::exchange(m_hasCatalog, true))
        m_file.writeReserved(m_catalogNumber, m_part->output.getRoot());
    m_file.writeObjects(m_part->copier.storedStreams(), m_part->copier.copiedTexts());
    endPart();
}

/// Objects that are known so far get what they hold when all pages of the part are there.
void PageComposer::Writer::fillPart() {
    m_part->appearances.finish();
    m_part->replacedProfiles = prepareStreams(m_part->output, m_part->copier.carriedStreams());
    ObjectNumbers& numbers = m_file.numbers();
    numberStandIns();
    for (PictureInWork& picture : m_pictures) {
        if (!picture.object)
            continue;
        if (picture.number == 0)
            picture.number = numbers.reserve();
        numbers.set(*picture.object, picture.number);
        picture.object.reset();
    }
}

/// libqpdf takes what it cannot read, and want of memory, for damage and goes on.
void PageComposer::Writer::endPart() {
    for (const auto& source : m_part->sources) {
        source->content().requireReadable();
        source->bringBackObjects();
    }
    m_part->copier.tellWritten(m_file.numbers(), m_part->replacedProfiles, m_written);
    m_file.beginPart();
    m_part.reset();
}

/// At last: whoever makes them has until then all the time that the rest takes.
void PageComposer::Writer::writePictures() {
    for (const PictureInWork& picture : m_pictures) {
        if (picture.number > 0)
            writePicture(m_file, picture.number, picture.make());
    }
}

void PageComposer::Writer::write() {
    if (m_part)
        writePart();
    if (!std::exchange(m_hasCatalog, true))
        m_file.writeReserved(m_catalogNumber,
                             "<</Pages " + std::to_string(m_pagesNumber) + " 0 R/Type/Catalog>>");
    m_file.writeReserved(
        m_pagesNumber, "<</Count " + std::to_string(m_pageCount) + "/Kids[" + m_kidsText + "]/Type/Pages>>");
    writePictures();
    m_file.finish(m_catalogNumber);
    m_consumer.finish();
}

}  // namespace vellmora
