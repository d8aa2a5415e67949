#pragma once

#include "ui/DropZone.h"
#include "ui/Theme.h"

#include <QWidget>

namespace vellmora {

/// The right part of the window: the page editor when a document is open, else an empty state that invites a
/// drop.
class EditorArea : public QWidget {
    Q_OBJECT

public:
    struct Data {
        bool hasDocument = false;
        bool isPDFDropTargeted = false;
    };

    EditorArea(const Theme& theme, QWidget* parent);

    /// The page editor, made by the caller as a child of this area; shown while there is a document.
    void setEditor(QWidget* editor);
    void setData(const Data& newData);

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QWidget* makeEmptyState(const Theme& theme);
    void layOut();

    QWidget* m_editor = nullptr;
    DropZone* m_emptyZone = nullptr;
    QWidget* m_emptyState;
    DropZone* m_overlay;
};

}  // namespace vellmora
