#include "engine/process/DocumentServer.h"

#include "base/Error.h"
#include "confinement/Confinement.h"
#include "engine/PageComposer.h"
#include "engine/process/Allocator.h"

#include <algorithm>
#include <new>
#include <stdexcept>
#include <sys/mman.h>
#include <utility>
#include <vector>

namespace vellmora {

namespace {

/// Memory of the program, for reading.
class Mapping {
public:
    Mapping(const FileDescriptor& memory, size_t size) : m_size(std::max<size_t>(size, 1)) {
        m_bytes = ::mmap(nullptr, m_size, PROT_READ, MAP_SHARED, memory.get(), 0);
        if (m_bytes == MAP_FAILED)
            throw std::bad_alloc();
    }
    ~Mapping() { ::munmap(m_bytes, m_size); }
    Mapping(const Mapping&) = delete;
    Mapping& operator=(const Mapping&) = delete;

    const void* bytes() const { return m_bytes; }

private:
    size_t m_size;
    void* m_bytes;
};

std::array<double, 4> valuesOf(const Rect& rect) {
    return {rect.x, rect.y, rect.width, rect.height};
}

Rect rectOf(const std::array<double, 4>& values) {
    return {values[0], values[1], values[2], values[3]};
}

/// The pictures that the program sends while the pages are drawn.
class LatePictures {
public:
    explicit LatePictures(int socket) : m_socket(socket) {}

    EncodedPicture take(size_t index) {
        if (m_pictures.empty())
            receive();
        return std::move(m_pictures.at(index));
    }

private:
    void receive() {
        const auto request = receiveDocumentRequest(m_socket);
        if (!request || request->message.kind != DocumentRequestKind::pictures)
            throw std::runtime_error("no pictures");
        const size_t size = request->message.size;
        const Mapping packed(request->memory, size);
        m_pictures = unpackedPictures(
            QByteArray::fromRawData(static_cast<const char*>(packed.bytes()), static_cast<qsizetype>(size)));
    }

    int m_socket;
    std::vector<EncodedPicture> m_pictures;
};

/// Carries out the commands for a new file.
class Composing {
public:
    Composing(const ParsedDocument& document, ReplyStream& replies, int socket)
        : m_document(document), m_replies(replies), m_pictures(socket), m_composer(replies) {}

    void run(const ComposeCommand* commands, size_t count) {
        m_pageCount = std::count_if(commands, commands + count, [](const ComposeCommand& command) {
            return command.kind == ComposeCommand::Kind::endPage;
        });
        for (size_t i = 0; i < count; ++i)
            carryOut(commands[i]);
        m_composer.close();
        m_replies.sendIndices(DocumentReplyKind::incomplete, m_composer.incompletePages());
    }

private:
    void carryOut(const ComposeCommand& command) {
        switch (command.kind) {
            case ComposeCommand::Kind::beginPage:
                return m_composer.beginPage();
            case ComposeCommand::Kind::drawPage:
                return drawPage(command.page, command.detail != 0);
            case ComposeCommand::Kind::addPicture:
                m_composer.addPicture([this, index = m_pictureCount++] { return m_pictures.take(index); });
                return;
            case ComposeCommand::Kind::drawPicture:
                return m_composer.drawPicture(static_cast<int>(command.detail), rectOf(command.rect));
            case ComposeCommand::Kind::endPage:
                m_composer.endPage();
                return m_replies.setProgress(++m_donePages, m_pageCount);
        }
    }

    void drawPage(qsizetype index, bool isCropBox) {
        if (index < 0 || index >= m_document.pageCount())
            throw std::out_of_range("no such page");
        m_composer.drawPage(m_document, index, isCropBox ? DisplayBox::cropBox : DisplayBox::mediaBox);
    }

    const ParsedDocument& m_document;
    ReplyStream& m_replies;
    LatePictures m_pictures;
    PageComposer m_composer;
    size_t m_pictureCount = 0;
    qsizetype m_donePages = 0;
    qsizetype m_pageCount = 0;
};

}  // namespace

void DocumentServer::run() {
    while (auto request = receiveDocumentRequest(m_socket)) {
        try {
            serve(std::move(*request));
        } catch (const Unparsable& failure) {
            m_replies.fail(failure.reason);
        } catch (const Error& error) {
            m_replies.fail(DocumentFailure::unreadable, error.code());
        } catch (const std::bad_alloc&) {
            m_replies.fail(DocumentFailure::outOfMemory);
        } catch (const std::exception&) {
            m_replies.fail(DocumentFailure::notProduced);
        }
        giveBackFreeMemory();
    }
}

void DocumentServer::serve(ReceivedDocumentRequest request) {
    m_replies.setProgress(0, 0);
    if (request.message.kind == DocumentRequestKind::open && !m_content)
        open(std::move(request));
    else if (request.message.kind == DocumentRequestKind::complete && m_document)
        complete();
    else if (request.message.kind == DocumentRequestKind::compose && m_document)
        compose(request);
    else if (request.message.kind == DocumentRequestKind::settle && m_content)
        settle();
    else
        throw std::logic_error("not now");
}

void DocumentServer::open(ReceivedDocumentRequest request) {
    if (!limitMemory(request.message.memory))
        throw std::bad_alloc();
    m_content = std::make_shared<SnapshotReader>(std::move(request.memory), std::move(request.file),
                                                 request.message.size);
    m_uncopied = request.message.isFileShown != 0 ? UncopiedRange::isShown : UncopiedRange::isRead;
    m_content->setUncopied(m_uncopied);
    m_content->whenRead([this] { m_replies.keepAlive(); });
    const bool isFirstPageEnough = request.message.isFirstPageEnough != 0;
    m_document = std::make_unique<ParsedDocument>(
        m_content, isFirstPageEnough ? ParsedDocument::Extent::firstPage : ParsedDocument::Extent::allPages);
    if (m_document->isComplete())
        return sendStructure();
    sendPages();
    m_replies.send(DocumentReplyKind::begun);
}

void DocumentServer::complete() {
    auto document = std::move(m_document);
    if (!document->isComplete())
        document->complete();
    m_document = std::move(document);
    sendStructure();
}

void DocumentServer::sendStructure() {
    sendPages();
    const DocumentDamage& damage = m_document->damage();
    m_replies.sendIndices(DocumentReplyKind::lostPages, damage.lostPages);
    m_replies.send(DocumentReplyKind::opened, OpenedDocument{damage.isRepaired, damage.isCutOff,
                                                             damage.uncountedPages, m_document->isPlain()});
}

void DocumentServer::sendPages() {
    std::vector<PageBoxes> pages;
    for (qsizetype index = 0; index < m_document->pageCount(); ++index) {
        const PDFPage page = m_document->page(index);
        pages.push_back(
            {valuesOf(page.bounds(DisplayBox::mediaBox)), valuesOf(page.bounds(DisplayBox::cropBox))});
    }
    m_replies.sendMany(DocumentReplyKind::pages, pages);
}

/// Where the file has changed meanwhile, or memory is short, a save will tell.
void DocumentServer::settle() {
    try {
        m_content->agreesWithSnapshot();
    } catch (const std::bad_alloc&) {
    }
}

/// False where something else was read than what the snapshot holds.
bool DocumentServer::prepareFor(ComposeSource source) {
    m_content->setUncopied(source == ComposeSource::openFile ? UncopiedRange::isTold : m_uncopied);
    m_replies.setShared({});
    if (source != ComposeSource::anyBytes)
        m_replies.setShared({m_content->memory(), m_content->shownFile()});
    if (source == ComposeSource::wholeSnapshot) {
        if (!m_content->agreesWithSnapshot())
            return false;
        if (std::exchange(m_hasSeenFile, false))
            m_document = std::make_unique<ParsedDocument>(m_content);
    }
    m_hasSeenFile = m_hasSeenFile || source == ComposeSource::openFile;
    return true;
}

void DocumentServer::compose(const ReceivedDocumentRequest& request) {
    if (!prepareFor(request.message.source))
        return m_replies.fail(DocumentFailure::changed);
    const Mapping commands(request.memory, request.message.size);
    Composing composing(*m_document, m_replies, m_socket);
    composing.run(static_cast<const ComposeCommand*>(commands.bytes()),
                  request.message.size / sizeof(ComposeCommand));
    // Before all that was composed is taken apart, for which nobody has to wait.
    m_replies.send(DocumentReplyKind::composed);
}

}  // namespace vellmora
