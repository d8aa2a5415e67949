#include "pdf/DocumentSession.h"

#include "pdf/StructureReply.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

namespace vellmora {

namespace {

using Kind = DocumentReplyKind;

/// What a process needs beside the source, which it maps.
constexpr std::uint64_t memoryOfProcess = std::uint64_t{1} << 30;
/// A process that works says so far more often.
constexpr std::chrono::seconds longestSilence{12};
constexpr std::chrono::seconds timeForView{4};
/// A file has what the source has, and more where that refers to the same from many places.
constexpr qint64 mostBytesForView = 64 << 20;
constexpr qint64 mostBytesForFile = 1 << 30;
constexpr qint64 mostTimesSource = 4;

constexpr int maxAttempts = 2;

/// Bytes for the process to read.
SharedMemory sharedMemory(const void* bytes, size_t size) {
    SharedMemory memory(std::max<size_t>(size, 1), SharedMemory::Writers::maker);
    if (!memory.isValid())
        throw std::bad_alloc();
    if (size > 0)
        std::memcpy(memory.bytes(), bytes, size);
    return memory;
}

DocumentHelper::Patience patienceFor(const Composition& composition) {
    if (composition.isForView)
        return {timeForView, DocumentHelper::Clock::now() + timeForView};
    return {longestSilence, std::nullopt};
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

std::optional<pid_t> DocumentSession::processID() const {
    const std::scoped_lock lock(m_mutex);
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

DocumentStructure DocumentSession::start(WorkProgress* progress) {
    const DocumentHelper::Patience patience{longestSilence, std::nullopt};
    auto helper =
        std::make_unique<DocumentHelper>(m_processes.take(), m_content->size() + memoryOfProcess);
    helper->send({DocumentRequestKind::open, 0, m_content->size()}, m_content->memory(), m_content->file());
    StructureReply structure;
    while (!structure.isComplete()) {
        const DocumentHelper::Reply reply = helper->receive(patience, progress);
        if (reply.kind == Kind::progress)
            report(reply, progress);
        else if (reply.kind == Kind::failed)
            fail(reply.as<FailedRequest>());
        else
            structure.add(reply);
    }
    m_helper = std::move(helper);
    return structure.take();
}

DocumentStructure DocumentSession::open(WorkProgress* progress) {
    const std::scoped_lock lock(m_mutex);
    DocumentStructure structure = attempt([&] { return start(progress); }, 0);
    m_pageCount = structure.pages.size();
    return structure;
}

void DocumentSession::restart(WorkProgress* progress) {
    if (start(progress).pages.size() != m_pageCount)
        throw HelperLost(DocumentFailure::unsound);
}

void DocumentSession::sendComposition(const Composition& composition) {
    const size_t size = composition.commands.size() * sizeof(ComposeCommand);
    const SharedMemory commands = sharedMemory(composition.commands.data(), size);
    m_helper->send({DocumentRequestKind::compose, composition.isForView ? 0U : 1U, size},
                   commands.descriptor());
    if (!composition.pictures)
        return;
    const QByteArray packed = packedPictures(composition.pictures());
    const auto packedSize = static_cast<size_t>(packed.size());
    const SharedMemory pictures = sharedMemory(packed.constData(), packedSize);
    m_helper->send({DocumentRequestKind::pictures, 0, packedSize}, pictures.descriptor());
}

QList<qsizetype> DocumentSession::takeFile(const Composition& composition, PDFDataConsumer& consumer,
                                           qint64& delivered) {
    const auto sourceSize = static_cast<qint64>(m_content->size());
    const qint64 most = composition.isForView ? sourceSize + mostBytesForView
                                              : mostTimesSource * sourceSize + mostBytesForFile;
    const DocumentHelper::Patience patience = patienceFor(composition);
    IndexList incomplete(composition.pageCount);
    for (;;) {
        const DocumentHelper::Reply reply = m_helper->receive(patience, composition.progress);
        switch (reply.kind) {
            case Kind::progress:
                report(reply, composition.progress);
                break;
            case Kind::data:
                delivered += static_cast<qint64>(reply.content.size());
                if (delivered > most)
                    throw HelperLost(DocumentFailure::unsound);
                consumer.write(reply.content.data(), static_cast<qint64>(reply.content.size()));
                break;
            case Kind::incomplete:
                incomplete.add(reply);
                break;
            case Kind::composed:
                return incomplete.indices();
            case Kind::failed:
                fail(reply.as<FailedRequest>());
            default:
                throw HelperLost(DocumentFailure::unsound);
        }
    }
}

QList<qsizetype> DocumentSession::compose(const Composition& composition, PDFDataConsumer& consumer) {
    if (!composition.isForView)
        m_content->requireWhole();
    const std::scoped_lock lock(m_mutex);
    qint64 delivered = 0;
    QList<qsizetype> incomplete = attempt(
        [&] {
            if (!m_helper)
                restart(composition.progress);
            sendComposition(composition);
            return takeFile(composition, consumer, delivered);
        },
        delivered);
    // A spare process for the next document, when this one is on the screen.
    if (composition.isForView)
        m_processes.prepare();
    return incomplete;
}

}  // namespace vellmora
