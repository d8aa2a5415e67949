#pragma once

#include <utility>

#include <QFont>
#include <QString>

namespace vellmora {

/// The fonts that the program brings along, so that stamps and window look alike on every machine: one
/// sans-serif family with the weights regular, medium, semibold, bold and black and with tabular figures.
class SystemFonts {
public:
    /// Registers the embedded fonts with Qt; needs a QGuiApplication. May be called again.
    static SystemFonts load();

    /// The family at a size in points of the space that is drawn in (pixels at scale 1).
    QFont font(double size, QFont::Weight weight) const;

private:
    explicit SystemFonts(QString family) : m_family(std::move(family)) {}

    QString m_family;
};

}  // namespace vellmora
