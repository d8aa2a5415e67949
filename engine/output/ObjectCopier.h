#pragma once

#include "engine/file/ParsedFile.h"
#include "engine/objects/Qpdf.h"
#include "engine/output/CopiedText.h"
#include "engine/output/ObjectText.h"
#include "engine/output/StoredStreams.h"
#include "engine/output/WrittenObjects.h"

#include <map>
#include <optional>
#include <set>
#include <utility>
#include <vector>

namespace vellmora {

/// Copies objects of source files into the output, each indirect object once however often it is met, and
/// however long the chains of references are. The bytes of streams stay where they are and are fetched when
/// the output is written, so the sources must live until then.
class ObjectCopier {
public:
    /// `written` says what the file has already that the output is a part of.
    ObjectCopier(QPDF& output, const WrittenObjects& written) : m_output(output), m_written(written) {}

    /// The object's counterpart in the output. References to pages become null: a page brings only what it
    /// draws.
    QPDFObjectHandle copy(const QPDFObjectHandle& object);

    /// The counterpart of an object of a file whose words are known, which is no stream and no page. It can
    /// be referred to, but not be looked at.
    QPDFObjectHandle copyInWords(const QPDFObjectHandle& object, const PlainWords& words);
    /// A new object of the output with these words.
    QPDFObjectHandle add(CopiedText text);

    /// The counterpart of an object that was copied; nothing for one that was not, and for one without an
    /// object of its own.
    std::optional<QPDFObjectHandle> find(const SnapshotReader* file, int number) const;

    /// Gives a stream of the output the bytes of one of a source, as they are stored.
    void carryData(QPDFObjectHandle target, const QPDFObjectHandle& source);

    /// To be called before objects of the file are copied. Several may be parts of one; an object of it is
    /// copied once.
    void addFile(const ParsedFile& file) { m_files[file.catalog().getOwningQPDF()] = &file; }

    /// From now on: objects that are met the first time from then on can be forgotten.
    void beginStep() { m_copiedInStep.clear(); }
    /// Copies anew what was copied in the step: the source has changed.
    void forgetStep();

    /// How many objects were copied, without those that were written already.
    size_t count() const { return m_count; }
    /// The counterparts of objects that were written already, and the numbers that they have. What they hold
    /// does not matter. Each is answered once.
    std::vector<std::pair<QPDFObjectHandle, int>> takeStandIns() { return std::exchange(m_standIns, {}); }
    /// Notes the numbers that the copied objects have been written with. Those of which a copy may look
    /// different when it is met again are left out, and those of the output that are `except`ed.
    void tellWritten(const ObjectNumbers& numbers, const std::set<QPDFObjGen>& except,
                     WrittenObjects& written) const;

    QPDF& output() { return m_output; }
    const StoredStreams& storedStreams() const { return m_storedStreams; }
    const CopiedTexts& copiedTexts() const { return m_texts; }
    /// All streams that got the bytes of one of a source.
    const std::vector<QPDFObjectHandle>& carriedStreams() const { return m_carriedStreams; }

private:
    using Source = std::pair<const SnapshotReader*, QPDFObjGen>;

    static constexpr int maxNesting = 500;        ///< of direct objects within one another
    static constexpr int maxNestingOfWords = 20;  ///< of objects that refer to one another

    const ParsedFile* fileOf(const QPDFObjectHandle& object) const;
    Source sourceOf(const QPDFObjectHandle& object) const;
    void fillPending();
    QPDFObjectHandle counterpart(QPDFObjectHandle object, int levels = maxNesting);
    QPDFObjectHandle makeCounterpart(QPDFObjectHandle object);
    void fill(QPDFObjectHandle target, QPDFObjectHandle source, int levels = maxNesting);
    CopiedText textOf(const PlainWords& words, QPDF& file);
    bool copyShared(QPDFObjectHandle& target, const QPDFObjectHandle& object);

    std::optional<QPDFObjectHandle> standIn(const Source& source, QPDFObjectHandle object);

    QPDF& m_output;
    const WrittenObjects& m_written;
    std::vector<std::pair<QPDFObjectHandle, int>> m_standIns;
    std::map<const QPDF*, const ParsedFile*> m_files;
    StoredStreams m_storedStreams;
    CopiedTexts m_texts;
    int m_nestingOfWords = 0;
    std::vector<QPDFObjectHandle> m_carriedStreams;
    std::map<Source, QPDFObjectHandle> m_copies;
    size_t m_count = 0;
    std::vector<Source> m_copiedInStep;
    /// Counterparts that are empty so far, each with its source.
    std::vector<std::pair<QPDFObjectHandle, QPDFObjectHandle>> m_pending;
};

}  // namespace vellmora
