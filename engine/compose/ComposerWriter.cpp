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

PageComposer::Writer::Writer(PDFDataConsumer& consumer)
    : m_consumer(consumer), m_copier(m_output), m_resources(m_copier), m_appearances(m_copier) {
    m_output.emptyPDF();
    m_pages = m_output.getRoot().getKey("/Pages");
}

void PageComposer::Writer::beginPage() {
    m_page = OpenPage();
    m_page.dictionary.replaceKey("/Type", QPDFObjectHandle::newName("/Page"));
    m_page.dictionary.replaceKey("/Parent", m_pages);
}

void PageComposer::Writer::drawPage(const std::shared_ptr<const ParsedFile>& file, qsizetype index,
                                    DisplayBox box) {
    const ParsedFile& source = *file;
    const ParsedPage& page = source.page(index);
    m_page.fromPageSpace = page.orientation.fromPageSpace();
    useSource(file);
    m_copier.beginStep();
    const OpenPage begun = m_page;
    drawParts(source, page, box);
    if (source.bringBackObjects()) {
        m_copier.forgetStep();
        m_resources.forget();
        m_page.content = begun.content;
        m_page.annotationCount = begun.annotationCount;
        m_page.isIncomplete = begun.isIncomplete;
        drawParts(source, page, box);
    }
}

void PageComposer::Writer::drawParts(const ParsedFile& source, const ParsedPage& page, DisplayBox box) {
    attempt([&] { carryPageAttributes(page, box); });
    attempt([&] { carryDocumentAttributes(source); });
    attempt([&] { drawContent(page); });
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
    if (m_sources.insert(file).second)
        m_copier.addFile(file->catalog().getOwningQPDF(), file->content(), !file->isEncrypted());
}

void PageComposer::Writer::carryPageAttributes(const ParsedPage& page, DisplayBox box) {
    m_page.mediaBox = box == DisplayBox::mediaBox ? page.orientation.mediaBox() : page.cropBox;
    if (page.orientation.rotation() != 0)
        m_page.dictionary.replaceKey("/Rotate", QPDFObjectHandle::newInteger(page.orientation.rotation()));
    if (box == DisplayBox::mediaBox)
        carryInnerBoxes(page);
    QPDFObjectHandle dictionary = page.dictionary;
    QPDFObjectHandle userUnit = dictionary.getKey("/UserUnit");
    if (userUnit.isNumber())
        m_page.dictionary.replaceKey("/UserUnit", m_copier.copy(userUnit));
    QPDFObjectHandle group = dictionary.getKey("/Group");
    if (group.isDictionary())
        m_page.dictionary.replaceKey("/Group", m_copier.copy(group));
}

/// What is shown of the page, and what a printer makes of it. Each box is carried over as it is stated, so
/// that a reader that sees it in its own way sees it in the same way afterwards. Only the crop box may be
/// stated by a node above the page (ISO 32000-2, table 31).
void PageComposer::Writer::carryInnerBoxes(const ParsedPage& page) {
    if (page.statedCropBox)
        m_page.dictionary.replaceKey("/CropBox", m_boxes.of(*page.statedCropBox));
    QPDFObjectHandle dictionary = page.dictionary;
    for (const char* key : {"/BleedBox", "/TrimBox", "/ArtBox"}) {
        if (const std::optional<Rect> box = boxOf(dictionary.getKey(key)))
            m_page.dictionary.replaceKey(key, m_boxes.of(*box));
    }
}

/// Its layers, and what its colours are meant for.
void PageComposer::Writer::carryDocumentAttributes(const ParsedFile& source) {
    QPDFObjectHandle root = m_output.getRoot();
    for (const char* key : {"/OCProperties", "/OutputIntents"}) {
        QPDFObjectHandle value = source.catalog().getKey(key);
        if (!value.isNull() && !root.hasKey(key))
            root.replaceKey(key, m_copier.copy(value));
    }
}

void PageComposer::Writer::drawContent(const ParsedPage& page) {
    const qsizetype index = m_kids.getArrayNItems();
    paint("/P",
          makePageForm(m_copier, m_boxes, m_resources, page,
                       [this, index] { m_incompletePages.insert(index); }),
          {});
}

void PageComposer::Writer::drawAnnotations(const ParsedFile& source, const ParsedPage& page) {
    for (const Annotation& annotation : visibleAnnotations(page)) {
        attempt([&] {
            if (const auto appearance = m_appearances.make(annotation, source, page))
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
    m_page.layers.replaceKey(name, m_copier.copy(layer));
    m_page.content += "/OC " + name + " BDC\n";
    paint(name, appearance.form, appearance.matrix);
    m_page.content += "EMC\n";
}

int PageComposer::Writer::addPicture(PictureMaker picture) {
    m_pictures.push_back({m_output.newStream(), std::move(picture)});
    return static_cast<int>(m_pictures.size()) - 1;
}

void PageComposer::Writer::drawPicture(int picture, const Rect& rect) {
    const QTransform unitSquareToRect(rect.width, 0, 0, rect.height, rect.x, rect.y);
    paint("/S" + std::to_string(picture), m_pictures.at(static_cast<size_t>(picture)).object,
          unitSquareToRect * m_page.fromPageSpace);
}

void PageComposer::Writer::paint(const std::string& name, const QPDFObjectHandle& object,
                                 const QTransform& matrix) {
    m_page.objects.replaceKey(name, object);
    m_page.content += paintObject(name, matrix);
}

QPDFObjectHandle PageComposer::Writer::contentStream(const std::string& content) {
    const auto known = m_contentStreams.find(content);
    if (known != m_contentStreams.end())
        return known->second;
    return m_contentStreams.emplace(content, m_output.newStream(content)).first->second;
}

void PageComposer::Writer::endPage() {
    QPDFObjectHandle resources = QPDFObjectHandle::newDictionary();
    resources.replaceKey("/XObject", m_page.objects);
    if (!m_page.layers.getKeys().empty())
        resources.replaceKey("/Properties", m_page.layers);
    m_page.dictionary.replaceKey("/MediaBox", m_boxes.of(m_page.mediaBox));
    m_page.dictionary.replaceKey("/Resources", resources);
    m_page.dictionary.replaceKey("/Contents", contentStream(m_page.content));
    if (m_page.isIncomplete)
        m_incompletePages.insert(m_kids.getArrayNItems());
    m_kids.appendItem(m_output.makeIndirectObject(m_page.dictionary));
    m_page = {};
}

void PageComposer::Writer::write() {
    m_appearances.finish();
    prepareStreams(m_output, m_copier.carriedStreams());
    for (PictureInWork& picture : m_pictures)
        fillPictureObject(m_output, picture.object, picture.make());
    m_pages.replaceKey("/Kids", m_kids);
    m_pages.replaceKey("/Count", QPDFObjectHandle::newInteger(m_kids.getArrayNItems()));
    FileWriter(m_copier.storedStreams(), m_consumer).write(m_output.getRoot());
    // libqpdf takes what it cannot read, and want of memory, for damage and goes on.
    for (const auto& source : m_sources) {
        source->content().requireReadable();
        source->bringBackObjects();
    }
    m_consumer.finish();
}

}  // namespace vellmora
