#include "engine/compose/PageForm.h"

#include "engine/compose/PageResources.h"
#include "engine/file/PartialData.h"
#include "engine/output/ObjectText.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace vellmora {

namespace {

/// Half a pixel of a thin line may lie outside of the box at its edge.
constexpr double edgeAllowance = 2;

/// Delivers several streams decoded, a line break after each: a token never spans two of them.
class JoinedStreams : public QPDFObjectHandle::StreamDataProvider {
public:
    JoinedStreams(std::vector<QPDFObjectHandle> streams, std::function<void()> onIncomplete)
        : m_streams(std::move(streams)), m_onIncomplete(std::move(onIncomplete)) {}
    void provideStreamData(const QPDFObjGen&, Pipeline* pipeline) override {
        for (const QPDFObjectHandle& stream : m_streams) {
            if (!pipeAsFarAsPossible(stream, *pipeline))
                m_onIncomplete();
            pipeline->writeCStr("\n");
        }
        pipeline->finish();
    }

private:
    std::vector<QPDFObjectHandle> m_streams;
    std::function<void()> m_onIncomplete;
};

void provideContent(QPDFObjectHandle form, ObjectCopier& copier, std::vector<QPDFObjectHandle> streams,
                    std::function<void()> onIncomplete) {
    if (streams.size() == 1) {
        QPDFObjectHandle source = streams.front().getDict();
        copier.carryData(form, streams.front());
        for (const char* key : {"/Filter", "/DecodeParms"})
            form.getDict().replaceKey(key, copier.copy(source.getKey(key)));
    } else {
        const auto null = QPDFObjectHandle::newNull();
        form.replaceStreamData(std::make_shared<JoinedStreams>(std::move(streams), std::move(onIncomplete)),
                               null, null);
    }
}

/// A page's content where that is one plain stream that is compressed already.
struct PlainContent {
    PlainWords filters;  ///< the entries that say how it is compressed
    StoredBytes data;
};

/// The entries of a stream without references; nothing where it has others, or none.
std::optional<PlainWords> filtersOf(const PlainObject& stream, const PlainFile& file) {
    PlainWords filters;
    for (const char* key : {"/DecodeParms", "/Filter"}) {
        const std::string_view value = stream.entry(key);
        if (value.empty())
            continue;
        const std::optional<PlainWords> words = plainWords(value, file);
        if (!words)
            return std::nullopt;
        filters.push_back({key});
        filters.insert(filters.end(), words->begin(), words->end());
    }
    const bool areDirect =
        std::all_of(filters.begin(), filters.end(), [](const PlainWord& word) { return word.number == 0; });
    return areDirect && !stream.entry("/Filter").empty() ? std::optional(std::move(filters)) : std::nullopt;
}

std::optional<PlainContent> plainContent(const ParsedPage& page, const PlainFile* file) {
    const QPDFObjectHandle contents = page.entry("/Contents");
    if (!file || !contents.isIndirect() || contents.getObjGen().getGen() != 0)
        return std::nullopt;
    try {
        const int number = contents.getObjGen().getObj();
        PlainObject stream;
        file->read(number, stream);
        std::optional<PlainWords> filters =
            stream.isVerbatim() ? filtersOf(stream, *file) : std::optional<PlainWords>();
        if (!filters)
            return std::nullopt;
        const PlainFile::Range data = file->data(number, stream);
        return PlainContent{std::move(*filters), {&file->content(), data.offset, data.length}};
    } catch (const NotPlain&) {
        return std::nullopt;
    }
}

/// The form in words, entry by entry in the order in which files get them.
CopiedText formText(const PlainContent& content, const QPDFObjectHandle& box,
                    const QPDFObjectHandle& resources) {
    ObjectText text;
    text.add("<<");
    text.add("/BBox");
    text.addValue(box);
    text.add(content.filters, {});
    text.add("/Length");
    text.add(std::to_string(content.data.length));
    text.add("/Resources");
    text.addValue(resources);
    for (const char* word : {"/Subtype", "/Form", "/Type", "/XObject", ">>"})
        text.add(word);
    CopiedText form = text.take();
    form.data = content.data;
    return form;
}

}  // namespace

QPDFObjectHandle makePageForm(ObjectCopier& copier, BoxArrays& boxes, PageResources& resources,
                              const ParsedPage& page, const PlainFile* file,
                              std::function<void()> onIncomplete) {
    const QPDFObjectHandle& box = boxes.of(page.orientation.mediaBox().insetBy(-edgeAllowance));
    if (const auto content = plainContent(page, file))
        return copier.add(formText(*content, box, resources.of(page, file)));
    QPDFObjectHandle form = copier.output().newStream();
    provideContent(form, copier, contentStreamsOf(page), std::move(onIncomplete));
    QPDFObjectHandle dictionary = form.getDict();
    dictionary.replaceKey("/Type", QPDFObjectHandle::newName("/XObject"));
    dictionary.replaceKey("/Subtype", QPDFObjectHandle::newName("/Form"));
    dictionary.replaceKey("/BBox", box);
    dictionary.replaceKey("/Resources", resources.of(page, file));
    return form;
}

}  // namespace vellmora
