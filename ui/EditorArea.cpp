#include "ui/EditorArea.h"

#include <QPainter>

namespace vellmora {

namespace {

constexpr int symbolSize = 36;
constexpr double secondaryOpacity = 0.72;

}  // namespace

EmptyState::EmptyState(const Theme& theme, QWidget* parent)
    : QWidget(parent),
      m_symbol(new SymbolView(
          Symbol::document, symbolSize, [](const QPalette&) { return Theme::onDark(1); }, this)),
      m_title(makeTextOnDark(QStringLiteral("Keine PDF geladen"),
                             theme.font(Theme::titleSize, Theme::semibold), 1, this)),
      m_hint(makeTextOnDark(QStringLiteral("PDF per Button öffnen oder einfach hier hineinziehen."),
                            theme.font(Theme::bodySize), secondaryOpacity, this)),
      m_dropZone(new DropZone(theme, this)) {}

void EmptyState::resizeEvent(QResizeEvent*) {
    const int titleHeight = m_title->sizeHint().height();
    const int hintHeight = m_hint->sizeHint().height();
    const int total = symbolSize + titleHeight + hintHeight + m_dropZone->frameHeight() + 3 * spacing;
    int y = (height() - total) / 2;
    m_symbol->move((width() - symbolSize) / 2, y);
    y += symbolSize + spacing;
    m_title->setGeometry(0, y, width(), titleHeight);
    y += titleHeight + spacing;
    m_hint->setGeometry(0, y, width(), hintHeight);
    y += hintHeight + spacing;
    const int zoneWidth = qMin(width(), int{dropZoneMaximumWidth});
    m_dropZone->setFrameArea({(width() - zoneWidth) / 2, y, zoneWidth, m_dropZone->frameHeight()});
}

EditorArea::EditorArea(const Theme& theme, QWidget* parent)
    : QWidget(parent), m_emptyState(new EmptyState(theme, this)), m_overlay(new DropZone(theme, this)) {
    // What lies under it need not be painted.
    setAttribute(Qt::WA_OpaquePaintEvent);
    m_overlay->hide();
}

void EditorArea::setEditor(QWidget* editor) {
    m_editor = editor;
    m_overlay->raise();
    layOut();
}

/// Called at every step of a drag of a stamp. Such a step changes nothing here, so it must cost nothing.
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
    QPainter(this).fillRect(rect(), Theme::editorBackground(palette()));
}

}  // namespace vellmora
