#pragma once

#include "engine/file/PlainWords.h"
#include "engine/output/FileWriter.h"
#include "engine/output/ObjectCopier.h"
#include "engine/output/SharedObjects.h"
#include "engine/output/WrittenObjects.h"

#include <map>
#include <string>
#include <vector>

namespace vellmora {

/// Copies objects of plain files into a new file word by word, each once, without the PDF library. Nothing is
/// kept of them but their numbers.
class PlainCopier {
public:
    /// `written` is told of what pages share.
    PlainCopier(FileWriter& file, WrittenObjects& written) : m_file(file), m_written(written) {}

    /// From now on the objects are those of this file. `copies` are the library's, which stand for some of
    /// them; null where there are none. What was read and not written is forgotten.
    void begin(const PlainFile& file, const ObjectCopier* copies);
    /// Reads all objects that the words lead to. Throws `NotPlain` where one of them is left to the library.
    void read(const PlainWords& words);
    /// Writes what was read.
    void write();
    /// Adds words all of whose objects are written.
    void addTo(ObjectText& text, const PlainWords& words) {
        text.addNumbered(words, [this](int source) { return numberOf(source); });
    }

private:
    struct Object {
        int source = 0;  ///< its number in the source
        PlainKind kind{};
        size_t firstWord = 0;
        size_t lastWord = 0;  ///< behind it
    };

    static constexpr int isRead = -1;

    void meet(int source);
    int numberOf(int source);
    void write(const Object& object);

    FileWriter& m_file;
    WrittenObjects& m_written;
    const PlainFile* m_source = nullptr;
    const ObjectCopier* m_copies = nullptr;
    /// Of the objects of each source, by their numbers there: 0 for one that was not met.
    std::map<const SnapshotReader*, std::vector<int>> m_numbersOfFiles;
    std::vector<int>* m_numbers = nullptr;
    std::vector<Object> m_objects;  ///< not written yet
    PlainWords m_words;             ///< of these
    ObjectText m_text;
};

}  // namespace vellmora
