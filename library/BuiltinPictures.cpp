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
    // On the toolkit's own threads: on any other it hands each shape to them in pieces and waits for each.
    // A thread loads each size of text for itself, so stamps with the same sizes are drawn on the same one.
    for (const bool withSubtitle : {true, false})
        QThreadPool::globalInstance()->start([this, withSubtitle] { draw(withSubtitle); });
}

BuiltinPictures::~BuiltinPictures() {
    QThreadPool::globalInstance()->waitForDone();
}

void BuiltinPictures::draw(bool withSubtitle) {
    for (size_t i = 0; i < m_pngFiles.size(); ++i) {
        const BuiltinStampDefinition& stamp = m_definitions[static_cast<qsizetype>(i)];
        if (stamp.subtitle.has_value() == withSubtitle) {
            const QImage image = makeBuiltinStampImage(m_fonts, stamp.title, stamp.subtitle, stamp.tint);
            m_pngFiles[i].set_value(Image(image).pngRepresentation());
        }
    }
}

}  // namespace vellmora
