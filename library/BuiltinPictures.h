#pragma once

#include "library/BuiltinStampDefinitions.h"
#include "platform/fonts/SystemFonts.h"

#include <vector>

#include <QByteArray>
#include <QList>

namespace vellmora {

/// The pictures of the built-in stamps, drawn on other threads from the moment the object is made.
class BuiltinPictures {
public:
    BuiltinPictures(QList<BuiltinStampDefinition> definitions, SystemFonts fonts);
    ~BuiltinPictures();
    BuiltinPictures(const BuiltinPictures&) = delete;
    BuiltinPictures& operator=(const BuiltinPictures&) = delete;

    const QList<BuiltinStampDefinition>& definitions() const { return m_definitions; }
    /// PNG files in the order of the definitions; one that cannot be made is empty. Waits until they are
    /// drawn.
    const std::vector<QByteArray>& pngFiles() const;

private:
    void draw(bool withSubtitle);

    const QList<BuiltinStampDefinition> m_definitions;
    const SystemFonts m_fonts;
    std::vector<QByteArray> m_pngFiles;
};

}  // namespace vellmora
