#pragma once

#include "ui/DropZone.h"
#include "ui/Symbols.h"
#include "ui/TextLabel.h"
#include "ui/Theme.h"

#include <QWidget>

namespace vellmora {

/// What the editor area shows without a document: a symbol, two lines and a drop zone, stacked in the middle.
class EmptyState : public QWidget {
    Q_OBJECT

public:
    static constexpr int spacing = 18;
    static constexpr int dropZoneMaximumWidth = 420;

    EmptyState(const Theme& theme, QWidget* parent);

    DropZone& dropZone() { return *m_dropZone; }

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    SymbolView* m_symbol;
    TextLabel* m_title;
    TextLabel* m_hint;
    DropZone* m_dropZone;
};

}  // namespace vellmora
