#include "pdf/PDFContext.h"

#include "pdf/DocumentSession.h"

#include <future>
#include <utility>
#include <vector>

namespace vellmora {

using Kind = ComposeCommand::Kind;

struct PDFContext::Contents {
    PDFDataConsumer& consumer;
    const PDFDocument& document;
    Composition composition;
    /// Compressed on a thread each while the pages are drawn.
    std::vector<std::shared_future<EncodedPicture>> pictures;
    QList<qsizetype> incompletePages;

    void note(Kind kind, std::uint32_t detail = 0, qsizetype page = 0, const Rect& rect = {}) {
        composition.commands.push_back({kind, detail, page, {rect.x, rect.y, rect.width, rect.height}});
    }
};

PDFContext::PDFContext(std::unique_ptr<Contents> contents) : m_contents(std::move(contents)) {}

PDFContext::~PDFContext() = default;

std::unique_ptr<PDFContext> PDFContext::create(PDFDataConsumer& consumer, const PDFDocument& document,
                                               WorkProgress* progress, Purpose purpose) {
    auto contents = std::make_unique<Contents>(Contents{consumer, document, {}, {}, {}});
    contents->composition.isForView = purpose == Purpose::viewing;
    contents->composition.progress = progress;
    return std::unique_ptr<PDFContext>(new PDFContext(std::move(contents)));
}

void PDFContext::beginPage() {
    m_contents->note(Kind::beginPage);
}

void PDFContext::drawPage(qsizetype pageIndex, DisplayBox box) {
    m_contents->note(Kind::drawPage, box == DisplayBox::cropBox ? 1 : 0, pageIndex);
}

PDFContext::Picture PDFContext::addPicture(const Image& image) {
    m_contents->note(Kind::addPicture);
    m_contents->pictures.push_back(std::async(encodePicture, image).share());
    return {static_cast<int>(m_contents->pictures.size()) - 1};
}

void PDFContext::drawPicture(Picture picture, const Rect& rect) {
    m_contents->note(Kind::drawPicture, static_cast<std::uint32_t>(picture.index), 0, rect);
}

void PDFContext::endPage() {
    m_contents->note(Kind::endPage);
    ++m_contents->composition.pageCount;
}

void PDFContext::close() {
    Contents& contents = *m_contents;
    if (!contents.pictures.empty()) {
        contents.composition.pictures = [&pictures = contents.pictures] {
            std::vector<EncodedPicture> encoded;
            encoded.reserve(pictures.size());
            for (const auto& picture : pictures)
                encoded.push_back(picture.get());
            return encoded;
        };
    }
    contents.incompletePages = contents.document.session().compose(contents.composition, contents.consumer);
    contents.consumer.finish();
}

QList<qsizetype> PDFContext::incompletePages() const {
    return m_contents->incompletePages;
}

}  // namespace vellmora
