#include "library/BuiltinDrawing.h"

#include "base/Image.h"
#include "library/BuiltinStampImage.h"

#include <memory>
#include <utility>

#include <QThreadPool>

namespace vellmora {

static QList<DrawnBuiltin> draw(const QList<BuiltinStampDefinition>& definitions, const SystemFonts& fonts) {
    QList<DrawnBuiltin> pictures;
    for (const BuiltinStampDefinition& stamp : definitions) {
        const QImage image = makeBuiltinStampImage(fonts, stamp.title, stamp.subtitle, stamp.tint);
        pictures.append({stamp, Image(image).pngRepresentation()});
    }
    return pictures;
}

BuiltinDrawing::BuiltinDrawing(SystemFonts fonts) : m_fonts(std::move(fonts)) {}

BuiltinDrawing::~BuiltinDrawing() {
    if (isUnderWay())
        m_pictures.wait();
}

/// The thread goes, and with it the fonts that Qt has loaded for it, unless the pool has other work.
QList<DrawnBuiltin> BuiltinDrawing::finish() {
    QList<DrawnBuiltin> pictures = m_pictures.get();
    constexpr int untilItHasEnded = 1;  // milliseconds: it has done its work
    QThreadPool::globalInstance()->waitForDone(untilItHasEnded);
    return pictures;
}

/// On any thread but those of this pool Qt would hand each shape to them in pieces, and wait for each.
void BuiltinDrawing::begin(const QList<BuiltinStampDefinition>& definitions) {
    auto task = std::make_shared<std::packaged_task<QList<DrawnBuiltin>()>>([this, definitions] {
        QList<DrawnBuiltin> pictures = draw(definitions, m_fonts);
        QMetaObject::invokeMethod(this, &BuiltinDrawing::drawn, Qt::QueuedConnection);
        return pictures;
    });
    m_pictures = task->get_future();
    QThreadPool::globalInstance()->start([task] { (*task)(); });
}

}  // namespace vellmora
