#include "pdf/DocumentSession.h"

#include "base/SharedMemory.h"
#include "pdf/Delivery.h"
#include "pdf/StructureReply.h"

#include <chrono>
#include <future>
#include <new>
#include <system_error>
#include <utility>

namespace vellmora {

namespace {

using Kind = DocumentReplyKind;

/// A new file has what the source has, and more where that refers to the same from many places.
constexpr qint64 mostTimesSource = 4;

constexpr int maxAttempts = 2;

/// Bytes for the process to read.
FileDescriptor memoryWith(const void* bytes, size_t size) {
    FileDescriptor memory = sealedFile(bytes, size);
    if (!memory.isValid())
        throw std::bad_alloc();
    return memory;
}

void report(const DocumentHelper::Reply& reply, WorkProgress* progress) {
    const auto state = reply.as<DocumentProgress>();
    if (state.done < 0 || state.done > state.total)
        throw HelperLost(DocumentFailure::unsound);
    if (progress)
        progress->report(state.done, state.total);
}

}  // namespace

DocumentSession::DocumentSession(DocumentProcesses& processes, std::shared_ptr<const FileSnapshot> content)
    : m_processes(processes), m_content(std::move(content)) {}

DocumentSession::~DocumentSession() {
    m_keeping.cancel();
}

std::optional<pid_t> DocumentSession::processID() const {
    const std::scoped_lock lock(m_turn);
    return m_helper ? std::optional(m_helper->pid()) : std::nullopt;
}

/// Runs the task, once more where the process ended before anything came of it: it may have been dying
/// before. A process of which anything is wrong is not used any more.
template <typename Task>
auto DocumentSession::attempt(Task task, const qint64& delivered) {
    for (int attempt = 1;; ++attempt) {
        try {
            return task();
        } catch (const HelperLost& lost) {
            m_helper.reset();
            if (lost.failure != DocumentFailure::ended || attempt == maxAttempts || delivered > 0)
                throw documentError(lost.failure);
        } catch (...) {
            m_helper.reset();
            throw;
        }
    }
}

void DocumentSession::fail(const FailedRequest& failed) {
    if (failed.reason > static_cast<std::uint32_t>(lastFailureOfDocument))
        throw HelperLost(DocumentFailure::unsound);
    m_content->requireReadable();
    const auto reason = static_cast<DocumentFailure>(failed.reason);
    if (reason == DocumentFailure::unreadable)
        throw m_content->readingError(failed.error);
    throw documentError(reason);
}

DocumentStructure DocumentSession::start(WorkProgress* progress, bool isFirstPageEnough) {
    const DocumentLimits& limits = m_processes.limits();
    const DocumentHelper::Patience patienceForStart{limits.start, std::nullopt};
    auto helper = std::make_unique<DocumentHelper>(m_processes.take(), patienceForStart, progress);
    // The process has the snapshot among its addresses, and the file where that is not copied yet.
    const size_t addresses = m_content->size() * (m_content->file() < 0 ? 1 : 2);
    // Once only: who looks at a file that is being cut short ends, and could not tell why.
    const bool isFileShown = std::exchange(m_mayShowFile, false) && m_content->canBeShown();
    helper->send({DocumentRequestKind::open,
                  {},
                  m_content->size(),
                  addresses + limits.memory,
                  isFileShown ? 1U : 0U,
                  isFirstPageEnough ? 1U : 0U},
                 m_content->memory(), m_content->file());
    DocumentStructure structure = receiveStructure(*helper, progress, isFirstPageEnough);
    m_helper = std::move(helper);
    return structure;
}

DocumentStructure DocumentSession::receiveStructure(DocumentHelper& helper, WorkProgress* progress,
                                                    bool isFirstPageEnough) {
    const DocumentHelper::Patience patience{m_processes.limits().silence, std::nullopt};
    StructureReply structure(isFirstPageEnough);
    while (!structure.isAnswered()) {
        const DocumentHelper::Reply reply = helper.receive(patience, progress);
        if (reply.kind == Kind::progress)
            report(reply, progress);
        else if (reply.kind == Kind::failed)
            fail(reply.as<FailedRequest>());
        else
            structure.add(reply);
    }
    helper.rest();
    return structure.take();
}

/// What has become of the process since the first page does not matter to the others.
DocumentStructure DocumentSession::complete(WorkProgress* progress) {
    if (!m_helper)
        return start(progress);
    m_helper->send({DocumentRequestKind::complete, {}, 0, 0, 0, 0}, m_content->memory());
    return receiveStructure(*m_helper, progress, false);
}

DocumentStructure DocumentSession::open(WorkProgress* progress, const FirstPageHandler& onFirstPage) {
    std::unique_lock lock(m_turn);
    DocumentStructure structure = attempt([&] { return start(progress, onFirstPage != nullptr); }, 0);
    if (!structure.isComplete) {
        const PDFPage firstPage = structure.pages.front();
        lock.unlock();
        onFirstPage(firstPage);
        lock.lock();
        structure = attempt([&] { return complete(progress); }, 0);
        structure.isContinued = structure.isContinued && structure.pages.front() == firstPage;
    }
    m_pageCount = structure.pages.size();
    return structure;
}

/// Waits for what else is being done. Throws the `Error` of work that is cancelled before its turn comes.
std::unique_lock<DocumentSession::Turn> DocumentSession::waitForTurn(const WorkProgress* progress) {
    while (!m_turn.lockWithin(std::chrono::milliseconds(50))) {
        if (progress && progress->isCancelled())
            throw WorkProgress::cancelledError();
    }
    return std::unique_lock(m_turn, std::adopt_lock);
}

/// Who looks at a page will do so for a while: has all that is left of a large file copied. Not before: a
/// save that is all that is asked for reads the file itself. And not while the document is being opened, for
/// which somebody waits.
void DocumentSession::keepContent() {
    if (m_content->file() < 0 || m_pageCount == 0)
        return;
    std::call_once(m_isKept, [this] {
        m_inBackground.run([this] {
            m_content->copyAll(m_keeping);
            settle();
        });
    });
}

/// Both processes share what is copied from now on. A process that is gone needs nothing.
void DocumentSession::settle() {
    m_content->requireReadable();
    const std::unique_lock lock = waitForTurn(&m_keeping);
    if (m_helper)
        m_helper->send({DocumentRequestKind::settle, {}, 0, 0, 0, 0}, m_content->memory());
}

void DocumentSession::restart(WorkProgress* progress) {
    if (start(progress).pages.size() != m_pageCount)
        throw HelperLost(DocumentFailure::unsound);
}

void DocumentSession::sendCommands(const Composition& composition, ComposeSource source) {
    const size_t size = composition.commands.size() * sizeof(ComposeCommand);
    const FileDescriptor commands = memoryWith(composition.commands.data(), size);
    m_helper->send({DocumentRequestKind::compose, source, size, 0, 0, 0}, commands.get());
}

/// Where they cannot be sent, nobody is left waiting for them.
void DocumentSession::sendPictures(const Composition& composition) {
    try {
        const QByteArray packed = packedPictures(composition.pictures());
        const auto size = static_cast<size_t>(packed.size());
        const FileDescriptor pictures = memoryWith(packed.constData(), size);
        m_helper->send({DocumentRequestKind::pictures, {}, size, 0, 0, 0}, pictures.get());
    } catch (...) {
        m_helper->hangUp();
        throw;
    }
}

/// The file is taken while its pictures are still being made: they are the last of it.
QList<qsizetype> DocumentSession::talk(const Composition& composition, ComposeSource source,
                                       Delivery& delivery) {
    sendCommands(composition, source);
    if (!composition.pictures)
        return takeFile(composition, delivery, {});
    // Ends before this function does, however that ends. Where there is no thread to be had, nobody waits.
    std::future<void> sending;
    try {
        sending = std::async(std::launch::async, [&] { sendPictures(composition); });
    } catch (const std::system_error&) {
        sending = std::async(std::launch::deferred, [&] { sendPictures(composition); });
        sending.wait();
    }
    const auto areMissing = [&sending] {
        return sending.wait_for(std::chrono::seconds(0)) != std::future_status::ready;
    };
    try {
        QList<qsizetype> incomplete = takeFile(composition, delivery, areMissing);
        sending.get();
        return incomplete;
    } catch (const HelperLost&) {
        if (sending.valid())
            sending.get();  // throws what lies behind it, if anything
        throw;
    }
}

/// `areMissing` tells that the process may have to wait for pictures.
QList<qsizetype> DocumentSession::takeFile(const Composition& composition, Delivery& delivery,
                                           const std::function<bool()>& areMissing) {
    const DocumentLimits& limits = m_processes.limits();
    DocumentHelper::Patience patience{limits.silence, std::nullopt, areMissing};
    if (composition.isForView)
        patience.end = DocumentHelper::Clock::now() + limits.view;
    IndexList incomplete(composition.pageCount);
    for (;;) {
        const DocumentHelper::Reply reply = m_helper->receive(patience, composition.progress);
        switch (reply.kind) {
            case Kind::progress:
                report(reply, composition.progress);
                break;
            case Kind::data:
                delivery.add(reply.content);
                break;
            case Kind::source:
                delivery.add(reply.as<SourceRange>(), composition.progress);
                break;
            case Kind::incomplete:
                incomplete.add(reply);
                break;
            case Kind::composed:
                delivery.requireBegun();
                m_helper->rest();
                return incomplete.indices();
            case Kind::failed:
                fail(reply.as<FailedRequest>());
            default:
                throw HelperLost(DocumentFailure::unsound);
        }
    }
}

QList<qsizetype> DocumentSession::composeFrom(ComposeSource source, const Composition& composition,
                                              PDFDataConsumer& consumer,
                                              const FileSnapshot::DirectReading* file) {
    const DocumentLimits& limits = m_processes.limits();
    const auto sourceSize = static_cast<qint64>(m_content->size());
    const qint64 most = composition.isForView ? sourceSize + limits.bytesForView
                                              : mostTimesSource * sourceSize + limits.bytesForFile;
    Delivery delivery(consumer, most);
    if (source != ComposeSource::anyBytes)
        delivery.allowSource(*m_content, file);
    return attempt(
        [&] {
            if (!m_helper)
                restart(composition.progress);
            return talk(composition, source, delivery);
        },
        delivery.delivered());
}

/// While the file is still being copied. Nothing where the snapshot is needed after all; the consumer is as
/// it was then.
std::optional<QList<qsizetype>> DocumentSession::composeDirectly(const Composition& composition,
                                                                 PDFDataConsumer& consumer) {
    if (!m_content->canBeReadDirectly())
        return std::nullopt;
    const std::unique_lock lock = waitForTurn(composition.progress);
    auto file = m_content->readDirectly();
    if (!file)
        return std::nullopt;
    try {
        QList<qsizetype> incomplete = composeFrom(ComposeSource::openFile, composition, consumer, file.get());
        if (file->isOfOneTime())
            return incomplete;
    } catch (...) {
        const bool isOfOneTime = file->isOfOneTime();
        file.reset();
        if (!isOfOneTime)
            m_content->requireWhole();  // a change is the reason for what was thrown
        throw;
    }
    // Somebody changed the file, or only its name or its permissions: what was written may be of two
    // versions.
    if (!consumer.restart())
        throw documentError(DocumentFailure::changed);
    return std::nullopt;
}

QList<qsizetype> DocumentSession::compose(const Composition& composition, PDFDataConsumer& consumer) {
    if (composition.isForView) {
        keepContent();
        const std::unique_lock lock = waitForTurn(composition.progress);
        return composeFrom(ComposeSource::anyBytes, composition, consumer, nullptr);
    }
    if (const auto incomplete = composeDirectly(composition, consumer))
        return *incomplete;
    m_content->requireWhole();
    const std::unique_lock lock = waitForTurn(composition.progress);
    return composeFrom(ComposeSource::wholeSnapshot, composition, consumer, nullptr);
}

}  // namespace vellmora
