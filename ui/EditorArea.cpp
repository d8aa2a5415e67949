#include "ui/EditorArea.h"

#include <QLabel>
#include <QPainter>
#include <QVBoxLayout>

namespace vellmora {

EditorArea::EditorArea(const Theme& theme, QWidget* parent)
    : QWidget(parent), m_emptyState(makeEmptyState(theme)), m_overlay(new DropZone(theme, this)) {
    m_overlay->hide();
}

static QLabel* makeText(const QString& text, const QFont& font, const QColor& color, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setFont(font);
    label->setAlignment(Qt::AlignCenter);
    QPalette palette = label->palette();
    palette.setColor(QPalette::WindowText, color);
    label->setPalette(palette);
    return label;
}

QWidget* EditorArea::makeEmptyState(const Theme& theme) {
    auto* state = new QWidget(this);
    auto* stack = new QVBoxLayout(state);
    stack->setSpacing(Theme::emptyStateSpacing);
    stack->addStretch();
    stack->addWidget(makeText(QStringLiteral("Keine PDF geladen"),
                              theme.font(Theme::emptyStateTitleSize, QFont::DemiBold), Qt::white, state));
    stack->addWidget(makeText(QStringLiteral("PDF per Button öffnen oder einfach hier hineinziehen."),
                              theme.font(Theme::controlTextSize), Theme::secondaryTextOnDark(), state));
    m_emptyZone = new DropZone(theme, state);
    m_emptyZone->setFixedWidth(Theme::dropZoneMaxWidth);
    stack->addWidget(m_emptyZone, 0, Qt::AlignHCenter);
    stack->addStretch();
    return state;
}

void EditorArea::setEditor(QWidget* editor) {
    m_editor = editor;
    m_overlay->raise();
    layOut();
}

void EditorArea::setData(const Data& newData) {
    if (m_editor)
        m_editor->setVisible(newData.hasDocument);
    m_emptyState->setVisible(!newData.hasDocument);
    m_emptyZone->setTargeted(newData.isPDFDropTargeted);
    m_overlay->setTargeted(newData.isPDFDropTargeted);
    m_overlay->setVisible(newData.hasDocument && newData.isPDFDropTargeted);
}

void EditorArea::layOut() {
    if (m_editor)
        m_editor->setGeometry(rect());
    m_emptyState->setGeometry(rect());
    const QSize zone(qMin(int{Theme::dropOverlayMaxWidth}, width() - 2 * Theme::dropOverlayPadding),
                     m_overlay->sizeHint().height());
    m_overlay->setGeometry(QRect(rect().center() - QPoint(zone.width() / 2, zone.height() / 2), zone));
}

void EditorArea::resizeEvent(QResizeEvent*) {
    layOut();
}

void EditorArea::paintEvent(QPaintEvent*) {
    QPainter(this).fillRect(rect(), Theme::editorBackground());
}

}  // namespace vellmora
