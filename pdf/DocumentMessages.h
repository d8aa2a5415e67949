#pragma once

#include "base/FileDescriptor.h"
#include "picture/PictureEncoding.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include <QByteArray>

namespace vellmora {

/// What the program and the process of a document say to each other over a stream of bytes. Both run on one
/// machine and come from one build, so the layout is that of memory. The program asks, one thing at a time;
/// the process says something every now and then until it has answered.

enum class DocumentRequestKind : std::uint32_t {
    open,      ///< comes with the snapshot's memory and, where it is not all there, the file
    complete,  ///< after an answer that the document is begun: asks for all pages
    compose,   ///< a new file; comes with memory that holds its `ComposeCommand`s
    settle,    ///< the snapshot is whole: what was read from the file need not be kept; not answered
    pictures,  ///< comes after `compose` where that adds pictures, with memory that holds them
};

/// What a new file is composed of.
enum class ComposeSource : std::uint32_t {
    anyBytes,       ///< what the snapshot has, and what the file has beside it: for a look
    wholeSnapshot,  ///< the process is to make sure that it has not read anything else
    openFile,       ///< the same with the file for what is not copied yet; the program makes sure of it
};

struct DocumentRequest {
    DocumentRequestKind kind;
    ComposeSource source;  ///< of `compose`
    std::uint64_t size;    ///< of the snapshot, in bytes; of the commands or pictures, in bytes
    /// Of `open`: the most that the process may take from then on, in bytes of addresses.
    std::uint64_t memory;
    /// Of `open`: whether it may look at the file where it lies.
    std::uint64_t isFileShown;
    /// Of `open`: whether the answer may end with the first page of a long document.
    std::uint64_t isFirstPageEnough;
};

struct ReceivedDocumentRequest {
    DocumentRequest message{};
    FileDescriptor memory;
    FileDescriptor file;
};

/// False where the other side is gone. `file` may be negative.
bool sendDocumentRequest(int socket, const DocumentRequest& request, int memory, int file = -1);
/// Waits for the next request; nothing when the program is gone.
std::optional<ReceivedDocumentRequest> receiveDocumentRequest(int socket);

/// One call of a `PDFContext`.
struct ComposeCommand {
    enum class Kind : std::uint32_t { beginPage, drawPage, addPicture, drawPicture, endPage };

    Kind kind;
    std::uint32_t detail;        ///< the picture's number, or whether it is the crop box
    std::int64_t page;           ///< of the source
    std::array<double, 4> rect;  ///< x, y, width, height
};

/// What an answer consists of.
enum class DocumentReplyKind : std::uint32_t {
    ready,      ///< said once, by a process that has confined itself
    progress,   ///< `DocumentProgress`
    pages,      ///< `PageBoxes` of the next pages
    lostPages,  ///< 64-bit indices of the next lost pages
    begun,   ///< the end of a successful answer to `open`: the page before it is the first of a long document
    opened,  ///< `OpenedDocument`: the end of a successful answer to `open` or `complete`
    data,    ///< the next bytes of the new file
    source,  ///< `SourceRange`: they are the same as in the source; not of `anyBytes`
    incomplete,  ///< 64-bit indices of the next incomplete pages
    composed,    ///< the end of a successful answer to `compose`
    failed,      ///< `FailedRequest`: the end of another one
};

/// Comes before each reply.
struct DocumentReplyHeader {
    std::uint32_t kind;    ///< a `DocumentReplyKind`; anything, where the process has been taken over
    std::uint32_t length;  ///< of what follows, in bytes
};
inline constexpr std::uint32_t maxReplyLength = 1 << 18;

struct DocumentProgress {
    std::int64_t done;
    std::int64_t total;
};

struct PageBoxes {
    std::array<double, 4> mediaBox;  ///< x, y, width, height
    std::array<double, 4> cropBox;
};

struct OpenedDocument {
    std::uint32_t isRepaired;
    std::uint32_t isCutOff;
    std::int64_t uncountedPages;
    std::uint64_t isPlain;  ///< a first page that was told before is that of the document
};

struct SourceRange {
    std::uint64_t offset;
    std::uint64_t length;
};

struct FailedRequest {
    std::uint32_t reason;  ///< a `DocumentFailure`
    std::int32_t error;    ///< an error number, where that is `unreadable`
};

/// No real document has more pages.
inline constexpr std::int64_t maxPageCount = 1 << 20;

/// Pictures as bytes, one after the other.
QByteArray packedPictures(const std::vector<EncodedPicture>& pictures);
std::vector<EncodedPicture> unpackedPictures(const QByteArray& bytes);

}  // namespace vellmora
