#pragma once

#include "library/BuiltinStampDefinitions.h"
#include "platform/fonts/SystemFonts.h"

#include <future>
#include <vector>

#include <QByteArray>
#include <QList>

namespace vellmora {

/// The pictures of the built-in stamps, drawn on another thread from the moment the object is made.
class BuiltinPictures {
public:
    BuiltinPictures(QList<BuiltinStampDefinition> definitions, SystemFonts fonts);
    ~BuiltinPictures();
    BuiltinPictures(const BuiltinPictures&) = delete;
    BuiltinPictures& operator=(const BuiltinPictures&) = delete;

    /// The PNG file of a definition, by its place among them; empty where it cannot be made. Waits until it
    /// is drawn; to be called once for each.
    QByteArray takePngFile(size_t index) { return m_pngFiles[index].get_future().get(); }

private:
    void draw();

    const QList<BuiltinStampDefinition> m_definitions;
    const SystemFonts m_fonts;
    std::vector<std::promise<QByteArray>> m_pngFiles;
};

}  // namespace vellmora
