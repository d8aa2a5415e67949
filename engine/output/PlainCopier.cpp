#include "engine/output/PlainCopier.h"

#include <algorithm>
#include <span>

namespace vellmora {

namespace {

/// Objects that one page leads to and that are kept in memory until all of them are known to be plain.
constexpr size_t mostObjects = 20000;

}  // namespace

void PlainCopier::begin(const PlainFile& file, const ObjectCopier* copies) {
    for (const Object& object : m_objects)
        (*m_numbers)[static_cast<size_t>(object.source)] = 0;
    m_objects.clear();
    m_words.clear();
    m_source = &file;
    m_copies = copies;
    m_numbers = &m_numbersOfFiles[&file.content()];
    m_numbers->resize(static_cast<size_t>(file.size()));
}

void PlainCopier::meet(int source) {
    if (source >= m_source->size() || m_objects.size() == mostObjects)
        throw NotPlain();
    int& number = (*m_numbers)[static_cast<size_t>(source)];
    const SnapshotReader* content = &m_source->content();
    if (number != 0 || (m_copies && m_copies->find(content, source)))
        return;
    number = m_written.find(content, QPDFObjGen(source, 0));
    if (number != 0)
        return;
    number = isRead;
    m_objects.push_back({source});
}

void PlainCopier::read(const PlainWords& words) {
    size_t next = m_objects.size();
    for (const PlainWord& word : words) {
        if (word.number != 0)
            meet(word.number);
    }
    for (; next < m_objects.size(); ++next) {
        const size_t first = m_words.size();
        const PlainKind kind = addPlainObject(m_words, m_objects[next].source, *m_source);
        for (size_t i = first; i < m_words.size(); ++i) {
            if (m_words[i].number != 0)
                meet(m_words[i].number);
        }
        m_objects[next] = {m_objects[next].source, kind, first, m_words.size()};
    }
}

int PlainCopier::numberOf(int source) {
    const int number = (*m_numbers)[static_cast<size_t>(source)];
    return number > 0 ? number : m_file.numbers().of(*m_copies->find(&m_source->content(), source));
}

void PlainCopier::write() {
    for (const Object& object : m_objects)
        (*m_numbers)[static_cast<size_t>(object.source)] = m_file.numbers().reserve();
    for (const Object& object : m_objects)
        write(object);
    m_objects.clear();
    m_words.clear();
}

void PlainCopier::write(const Object& object) {
    const int number = numberOf(object.source);
    const PlainKind& kind = object.kind;
    m_text.clear();
    m_text.addNumbered(std::span(m_words).subspan(object.firstWord, object.lastWord - object.firstWord),
                       [this](int source) { return numberOf(source); });
    if (kind.data)
        m_file.writeReserved(number, m_text.text(), kind.data->bytes(), kind.packing);
    else
        m_file.writeReserved(number, m_text.text());
    if (kind.isShared)
        m_written.add(&m_source->content(), QPDFObjGen(object.source, 0), number);
}

}  // namespace vellmora
