#pragma once

#include "base/FileSnapshot.h"
#include "base/SerialQueue.h"
#include "base/WorkProgress.h"
#include "pdf/DocumentDamage.h"
#include "pdf/DocumentHelper.h"
#include "pdf/DocumentProcesses.h"
#include "pdf/PDFDataConsumer.h"
#include "pdf/PDFPage.h"

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

#include <QList>

namespace vellmora {

/// What is known of a document's structure.
struct DocumentStructure {
    std::vector<PDFPage> pages;
    DocumentDamage damage;
    bool isComplete = true;  ///< else the first page is all that is known
    /// The first page is the one that was known before all of them were.
    bool isContinued = false;
};

class Delivery;

/// A new file that is to be made of a document's pages.
struct Composition {
    std::vector<ComposeCommand> commands;
    std::function<std::vector<EncodedPicture>()> pictures;  ///< asked once, when they are needed
    qsizetype pageCount = 0;                                ///< of the new file
    /// A look at a page: it has little time and, beside what the source has, little size. The snapshot need
    /// not be whole for it.
    bool isForView = false;
    WorkProgress* progress = nullptr;  ///< may be null
};

/// The process that reads a document and makes new files of it, however often it has to be started anew: the
/// snapshot outlives it. May be used by several threads; one thing is done at a time.
class DocumentSession {
public:
    /// Both must outlive the object, the content is shared.
    DocumentSession(DocumentProcesses& processes, std::shared_ptr<const FileSnapshot> content);
    ~DocumentSession();
    DocumentSession(const DocumentSession&) = delete;
    DocumentSession& operator=(const DocumentSession&) = delete;

    /// Gets the first page of a long document before the others are looked at; may call `compose` for it.
    using FirstPageHandler = std::function<void(const PDFPage&)>;

    /// To be called first, and once. Throws `Error`.
    DocumentStructure open(WorkProgress* progress, const FirstPageHandler& onFirstPage = {});

    /// Hands the file's bytes to the consumer, which is not finished. Answers the file's pages on which
    /// something of the source is missing. Throws the consumer's `Error`, or its own. From the first look at
    /// a page on, the rest of a large file is copied meanwhile.
    QList<qsizetype> compose(const Composition& composition, PDFDataConsumer& consumer);

    /// Of the running process; nothing while there is none.
    std::optional<pid_t> processID() const;

private:
    /// A mutex that can be waited for a while. (The thread sanitizer of GCC 12 does not see how
    /// `std::timed_mutex` is locked.)
    class Turn {
    public:
        void lock() {
            std::unique_lock state(m_state);
            m_freed.wait(state, [this] { return !m_isTaken; });
            m_isTaken = true;
        }
        bool lockWithin(std::chrono::milliseconds duration) {
            std::unique_lock state(m_state);
            if (!m_freed.wait_for(state, duration, [this] { return !m_isTaken; }))
                return false;
            m_isTaken = true;
            return true;
        }
        void unlock() {
            const std::scoped_lock state(m_state);
            m_isTaken = false;
            m_freed.notify_one();
        }

    private:
        std::mutex m_state;
        std::condition_variable m_freed;
        bool m_isTaken = false;
    };

    void keepContent();
    void settle();
    std::unique_lock<Turn> waitForTurn(const WorkProgress* progress);
    DocumentStructure start(WorkProgress* progress, bool isFirstPageEnough = false);
    DocumentStructure complete(WorkProgress* progress);
    DocumentStructure receiveStructure(DocumentHelper& helper, WorkProgress* progress,
                                       bool isFirstPageEnough);
    void restart(WorkProgress* progress);
    std::optional<QList<qsizetype>> composeDirectly(const Composition& composition,
                                                    PDFDataConsumer& consumer);
    QList<qsizetype> composeFrom(ComposeSource source, const Composition& composition,
                                 PDFDataConsumer& consumer, const FileSnapshot::DirectReading* file);
    void sendCommands(const Composition& composition, ComposeSource source);
    void sendPictures(const Composition& composition);
    QList<qsizetype> talk(const Composition& composition, ComposeSource source, Delivery& delivery);
    QList<qsizetype> takeFile(const Composition& composition, Delivery& delivery,
                              const std::function<bool()>& areMissing);
    [[noreturn]] void fail(const FailedRequest& failed);
    template <typename Task>
    auto attempt(Task task, const qint64& delivered);

    DocumentProcesses& m_processes;
    std::shared_ptr<const FileSnapshot> m_content;
    size_t m_pageCount = 0;  ///< of a document that is complete
    mutable Turn m_turn;
    std::unique_ptr<DocumentHelper> m_helper;
    bool m_mayShowFile = true;
    std::once_flag m_isKept;
    WorkProgress m_keeping;
    SerialQueue m_inBackground{SerialQueue::Priority::lowest};  ///< last: it ends first
};

}  // namespace vellmora
