#pragma once

#include "ui/DropZone.h"
#include "ui/Symbols.h"
#include "ui/TextLabel.h"
#include "ui/Theme.h"

#include <QWidget>

namespace vellmora {

/// Fills the editor area while no document is open: a symbol, two lines of text and a drop zone, stacked in
/// the middle.
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

/// The right part of the window. It shows the page editor when a document is open, else the empty state. A
/// drop zone lies over the editor while the user drags a file over the window.
class EditorArea : public QWidget {
    Q_OBJECT

public:
    static constexpr int overlayMaximumWidth = 440;
    static constexpr int overlayPadding = 24;

    struct Data {
        bool hasDocument = false;
        bool isPDFDropTargeted = false;
        bool operator==(const Data&) const = default;
    };

    EditorArea(const Theme& theme, QWidget* parent);

    /// The page editor, which the caller has made as a child of this area. It is shown while a document is
    /// open.
    void setEditor(QWidget* editor);
    void setData(const Data& newData);

    EmptyState& emptyState() { return *m_emptyState; }
    DropZone& overlay() { return *m_overlay; }

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void layOut();

    Data m_data;
    QWidget* m_editor = nullptr;
    EmptyState* m_emptyState;
    DropZone* m_overlay;
};

}  // namespace vellmora
