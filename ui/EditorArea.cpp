#include "ui/EditorArea.h"

#include <QPainter>

namespace vellmora {

EditorArea::EditorArea(const Theme& theme, QWidget* parent)
    : QWidget(parent), m_emptyState(new EmptyState(theme, this)), m_overlay(new DropZone(theme, this)) {
    m_overlay->hide();
}

void EditorArea::setEditor(QWidget* editor) {
    m_editor = editor;
    m_overlay->raise();
    layOut();
}

/// Called with every step of a drag, which changes nothing here.
void EditorArea::setData(const Data& newData) {
    if (newData == m_data)
        return;
    m_data = newData;
    if (m_editor)
        m_editor->setVisible(newData.hasDocument);
    m_emptyState->setVisible(!newData.hasDocument);
    m_emptyState->dropZone().setTargeted(newData.isPDFDropTargeted);
    m_overlay->setTargeted(newData.isPDFDropTargeted);
    m_overlay->setVisible(newData.hasDocument && newData.isPDFDropTargeted);
}

void EditorArea::layOut() {
    if (m_editor)
        m_editor->setGeometry(rect());
    m_emptyState->setGeometry(rect());
    const int overlayWidth = qMin(int{overlayMaximumWidth}, width() - 2 * overlayPadding);
    const int overlayHeight = m_overlay->frameHeight();
    m_overlay->setFrameArea(
        {(width() - overlayWidth) / 2, (height() - overlayHeight) / 2, overlayWidth, overlayHeight});
}

void EditorArea::resizeEvent(QResizeEvent*) {
    layOut();
}

void EditorArea::paintEvent(QPaintEvent*) {
    QPainter(this).fillRect(rect(), Theme::editorBackground());
}

}  // namespace vellmora
