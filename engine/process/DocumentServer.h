#pragma once

#include "base/SnapshotReader.h"
#include "engine/ParsedDocument.h"
#include "engine/process/ReplyStream.h"
#include "pdf/DocumentMessages.h"

#include <memory>

namespace vellmora {

/// Answers the program's requests on one document.
class DocumentServer {
public:
    explicit DocumentServer(int socket) : m_socket(socket) {}

    /// Until the program is gone, or asks for what there is not.
    void run();

private:
    void serve(ReceivedDocumentRequest request);
    void open(ReceivedDocumentRequest request);
    void complete();
    void sendPages();
    void sendStructure();
    void settle();
    bool prepareFor(ComposeSource source);
    void compose(const ReceivedDocumentRequest& request);

    int m_socket;
    ReplyStream m_replies;
    std::shared_ptr<SnapshotReader> m_content;
    std::unique_ptr<ParsedDocument> m_document;
    UncopiedRange m_uncopied = UncopiedRange::isRead;
    bool m_hasSeenFile = false;  ///< the document may know what no comparison with the snapshot covers
};

}  // namespace vellmora
