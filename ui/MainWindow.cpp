#include "ui/MainWindow.h"

#include "ui/Divider.h"

#include <QDropEvent>
#include <QHBoxLayout>
#include <QVBoxLayout>

namespace vellmora {

MainWindow::MainWindow(const Callbacks& callbacks, const Theme& theme)
    : m_callbacks(callbacks),
      m_commandBar(new CommandBar(callbacks.commands, theme, this)),
      m_sidebar(new Sidebar(callbacks.sidebar, theme, this)),
      m_editorArea(new EditorArea(theme, this)) {
    setWindowTitle(QStringLiteral("Vellmora"));
    setMinimumSize(minimumContentSize);
    setAcceptDrops(true);

    auto* stack = new QVBoxLayout(this);
    stack->setContentsMargins({});
    stack->setSpacing(0);
    stack->addWidget(m_commandBar);
    stack->addWidget(new Divider(Qt::Horizontal, this));
    auto* workRow = new QHBoxLayout;
    workRow->setSpacing(0);
    workRow->addWidget(m_sidebar);
    workRow->addWidget(new Divider(Qt::Vertical, this));
    workRow->addWidget(m_editorArea, 1);
    stack->addLayout(workRow, 1);
    // Else the first button has the keyboard, unseen.
    setFocus();
}

void MainWindow::fitInto(const QSize& room) {
    // What desktops draw around a window is known only once it is there: about this much.
    constexpr QSize frame(4, 40);
    setMinimumSize(minimumContentSize.boundedTo(room - frame).expandedTo(layout()->minimumSize()));
}

/// Whatever was proposed: after a move, the program that the file comes from may delete it.
static void acceptAsCopy(QDropEvent& event) {
    event.setDropAction(Qt::CopyAction);
    event.accept();
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event) {
    if (!hasFileURL(*event->mimeData()))
        return;
    acceptAsCopy(*event);
    m_callbacks.onDropTargeted(true);
}

void MainWindow::dragMoveEvent(QDragMoveEvent* event) {
    acceptAsCopy(*event);
}

void MainWindow::dragLeaveEvent(QDragLeaveEvent*) {
    m_callbacks.onDropTargeted(false);
}

void MainWindow::dropEvent(QDropEvent* event) {
    m_callbacks.onDropTargeted(false);
    if (m_callbacks.onDrop(itemProviders(*event->mimeData())))
        acceptAsCopy(*event);
    else
        event->ignore();
}

}  // namespace vellmora
