#include "ui/EmptyState.h"

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

}  // namespace vellmora
