#pragma once

#include "base/FileSnapshot.h"
#include "base/WorkProgress.h"
#include "pdf/DocumentMessages.h"
#include "pdf/PDFDataConsumer.h"

#include <string_view>
#include <vector>

namespace vellmora {

/// Hands the bytes of a new file on, as long as they can be those of one. Throws `HelperLost` where they
/// cannot.
class Delivery {
public:
    /// There may be `most` bytes.
    Delivery(PDFDataConsumer& consumer, qint64 most) : m_consumer(consumer), m_most(most) {}

    /// Lets ranges of the source come from the snapshot, which is whole, or from `file` where that is not
    /// null. Both must outlive the object.
    void allowSource(const FileSnapshot& snapshot, const FileSnapshot::DirectReading* file) {
        m_snapshot = &snapshot;
        m_file = file;
    }

    void add(std::string_view bytes);
    /// Throws an `Error`, too, where the source cannot be read, or the work is cancelled.
    void add(SourceRange range, const WorkProgress* progress);

    /// In bytes, so far.
    const qint64& delivered() const { return m_delivered; }
    void requireBegun() const;

private:
    std::string_view pieceOfSource(size_t offset, size_t length);

    PDFDataConsumer& m_consumer;
    qint64 m_most;
    qint64 m_delivered = 0;
    const FileSnapshot* m_snapshot = nullptr;
    const FileSnapshot::DirectReading* m_file = nullptr;
    std::vector<char> m_piece;
};

}  // namespace vellmora
