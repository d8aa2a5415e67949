#include "engine/compose/PageForm.h"

#include "engine/compose/PageResources.h"
#include "engine/file/PartialData.h"

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

}  // namespace

QPDFObjectHandle makePageForm(ObjectCopier& copier, BoxArrays& boxes, PageResources& resources,
                              const ParsedPage& page, std::function<void()> onIncomplete) {
    const Rect box = page.orientation.mediaBox().insetBy(-edgeAllowance);
    QPDFObjectHandle form = copier.output().newStream();
    provideContent(form, copier, contentStreamsOf(page), std::move(onIncomplete));
    QPDFObjectHandle dictionary = form.getDict();
    dictionary.replaceKey("/Type", QPDFObjectHandle::newName("/XObject"));
    dictionary.replaceKey("/Subtype", QPDFObjectHandle::newName("/Form"));
    dictionary.replaceKey("/BBox", boxes.of(box));
    dictionary.replaceKey("/Resources", resources.of(page));
    return form;
}

}  // namespace vellmora
