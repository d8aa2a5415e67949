#pragma once

#include "base/SystemFonts.h"
#include "library/BuiltinStampDefinitions.h"

#include <future>

#include <QByteArray>
#include <QDate>
#include <QList>
#include <QObject>

namespace vellmora {

/// A built-in stamp with its picture.
struct DrawnBuiltin {
    BuiltinStampDefinition definition;
    QByteArray png;  ///< empty where it could not be made
};

/// Draws the built-in stamps of a day, on a thread of Qt's.
class BuiltinDrawing : public QObject {
    Q_OBJECT

public:
    explicit BuiltinDrawing(SystemFonts fonts);
    ~BuiltinDrawing() override;

    void begin(const QList<BuiltinStampDefinition>& definitions);
    bool isUnderWay() const { return m_pictures.valid(); }
    /// Waits for the pictures and hands them out. Only where it is under way.
    QList<DrawnBuiltin> finish();

Q_SIGNALS:
    /// `finish` need not wait now, or was called already.
    void drawn();

private:
    SystemFonts m_fonts;
    std::future<QList<DrawnBuiltin>> m_pictures;
};

}  // namespace vellmora
