#include "ui/Sidebar.h"

#include <QVBoxLayout>

namespace vellmora {

Sidebar::Sidebar(const Callbacks& callbacks, const Theme& theme, QWidget* parent)
    : QWidget(parent), m_library(new LibraryList(callbacks.library, theme, this)) {
    setFixedWidth(Theme::sidebarWidth);
    auto* stack = new QVBoxLayout(this);
    constexpr int padding = Theme::sidebarPadding;
    stack->setContentsMargins(padding, padding, padding, padding);
    stack->addWidget(m_library);
}

void Sidebar::setData(const Data& newData) {
    m_library->setData(newData.library);
}

}  // namespace vellmora
