#include "library/BuiltinPictures.h"

#include "library/BuiltinStampImage.h"
#include "platform/image/Image.h"

#include <utility>

#include <QThreadPool>

namespace vellmora {

BuiltinPictures::BuiltinPictures(QList<BuiltinStampDefinition> definitions, SystemFonts fonts)
    : m_definitions(std::move(definitions)),
      m_fonts(std::move(fonts)),
      m_pngFiles(static_cast<size_t>(m_definitions.size())) {
    // On the toolkit's own threads: on any other it hands each shape to them in pieces and waits for each. On
    // one only, since the window is laid out meanwhile.
    QThreadPool::globalInstance()->start([this] { draw(); });
}

BuiltinPictures::~BuiltinPictures() {
    QThreadPool::globalInstance()->waitForDone();
}

void BuiltinPictures::draw() {
    for (size_t i = 0; i < m_pngFiles.size(); ++i) {
        const BuiltinStampDefinition& stamp = m_definitions[static_cast<qsizetype>(i)];
        const QImage image = makeBuiltinStampImage(m_fonts, stamp.title, stamp.subtitle, stamp.tint);
        m_pngFiles[i].set_value(Image(image).pngRepresentation());
    }
}

}  // namespace vellmora
