#include "platform/pdf/drawing/PageForm.h"

#include "platform/pdf/drawing/PageResources.h"

#include <utility>
#include <vector>

#include <qpdf/Pl_Concatenate.hh>

namespace vellmora {

namespace {

/// Half a pixel of a thin line may lie outside of the box at its edge.
constexpr double edgeAllowance = 2;

/// Delivers several streams decoded, a line break after each: a token never spans two of them.
class JoinedStreams : public QPDFObjectHandle::StreamDataProvider {
public:
    explicit JoinedStreams(std::vector<QPDFObjectHandle> streams) : m_streams(std::move(streams)) {}
    void provideStreamData(const QPDFObjGen&, Pipeline* pipeline) override {
        Pl_Concatenate joined("page content", pipeline);
        for (QPDFObjectHandle& stream : m_streams) {
            stream.pipeStreamData(&joined, nullptr, 0, qpdf_dl_specialized, true);
            joined.writeCStr("\n");
        }
        joined.manualFinish();
    }

private:
    std::vector<QPDFObjectHandle> m_streams;
};

void provideContent(QPDFObjectHandle form, ObjectCopier& copier, std::vector<QPDFObjectHandle> streams) {
    if (streams.size() == 1) {
        QPDFObjectHandle source = streams.front().getDict();
        copier.carryData(form, streams.front());
        for (const char* key : {"/Filter", "/DecodeParms"})
            form.getDict().replaceKey(key, copier.copy(source.getKey(key)));
    } else {
        const auto null = QPDFObjectHandle::newNull();
        form.replaceStreamData(std::make_shared<JoinedStreams>(std::move(streams)), null, null);
    }
}

}  // namespace

QPDFObjectHandle makePageForm(ObjectCopier& copier, BoxArrays& boxes, const SourcePage& page) {
    const Rect box = page.orientation.mediaBox().insetBy(-edgeAllowance);
    QPDFObjectHandle form = copier.output().newStream();
    QPDFObjectHandle resources = resourcesInUse(page);
    provideContent(form, copier, contentStreamsOf(page));
    QPDFObjectHandle dictionary = form.getDict();
    dictionary.replaceKey("/Type", QPDFObjectHandle::newName("/XObject"));
    dictionary.replaceKey("/Subtype", QPDFObjectHandle::newName("/Form"));
    dictionary.replaceKey("/BBox", boxes.of(box));
    dictionary.replaceKey(
        "/Resources", resources.isDictionary() ? copier.copy(resources) : QPDFObjectHandle::newDictionary());
    return form;
}

}  // namespace vellmora
