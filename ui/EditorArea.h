#pragma once

#include "ui/DropZone.h"
#include "ui/EmptyState.h"
#include "ui/Theme.h"

#include <QWidget>

namespace vellmora {

/// The right part of the window, in layers: the page editor when a document is open, else the empty state;
/// and over the editor a drop zone while a drag hovers.
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

    /// The page editor, made by the caller as a child of this area; shown while there is a document.
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
