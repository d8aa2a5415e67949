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

/// The page's content where that is one plain stream that is compressed already.
std::optional<PlainContent> compressedContent(const ParsedPage& page, const PlainFile* file) {
    const QPDFObjectHandle contents = page.entry("/Contents");
    if (!file || !contents.isIndirect() || contents.getObjGen().getGen() != 0)
        return std::nullopt;
    try {
        PlainContent content = plainContent(contents.getObjGen().getObj(), *file);
        return content.packing == Packing::asTheyAre ? std::optional(std::move(content)) : std::nullopt;
    } catch (const NotPlain&) {
        return std::nullopt;
    }
}

/// The form in words, entry by entry in the order in which files get them.
CopiedText formText(const PlainContent& content, const QPDFObjectHandle& box,
                    const QPDFObjectHandle& resources) {
    ObjectText text;
    text.add("/BBox");
    text.addValue(box);
    text.add(content.filters, {});
    text.add("/Resources");
    text.addValue(resources);
    for (const char* word : {"/Subtype", "/Form", "/Type", "/XObject"})
        text.add(word);
    CopiedText form = text.take();
    form.data = content.data;
    return form;
}

}  // namespace

const std::string& BoxArrays::textOf(const Rect& box) {
    std::string& text = m_texts[{box.x, box.y, box.width, box.height}];
    if (text.empty())
        text = vellmora::textOf(box);
    return text;
}

Rect formBox(const PageOrientation& page) {
    return page.mediaBox().insetBy(-edgeAllowance);
}

PlainContent plainContent(int number, const PlainFile& file) {
    PlainObject stream;
    file.read(number, stream);
    const PlainFile::Range data = file.data(number, stream);
    PlainContent content{{}, {&file.content(), data.offset, data.length}};
    const bool isCompressed = !stream.entry("/Filter").empty();
    if (!isCompressed && data.length <= largestToCompress)
        content.packing = Packing::compress;
    bool isReady = stream.isVerbatim();
    for (const char* key : {"/DecodeParms", "/Filter"}) {
        const std::string_view value = stream.entry(key);
        if (value.empty())
            continue;
        isReady &= isCompressed && value != "null";
        content.filters.push_back({key});
        addPlainWords(content.filters, value, file);
    }
    isReady &= std::all_of(content.filters.begin(), content.filters.end(),
                           [](const PlainWord& word) { return word.number == 0; });
    return isReady ? content : throw NotPlain();
}

QPDFObjectHandle makePageForm(ObjectCopier& copier, BoxArrays& boxes, PageResources& resources,
                              const ParsedPage& page, const PlainFile* file,
                              std::function<void()> onIncomplete) {
    const QPDFObjectHandle& box = boxes.of(formBox(page.orientation));
    if (const auto content = compressedContent(page, file))
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
