#include "ui/MainWindow.h"

#include <algorithm>

#include <QDropEvent>
#include <QHBoxLayout>
#include <QMimeData>
#include <QPainter>
#include <QVBoxLayout>

namespace vellmora {

namespace {

/// A line of one point between two parts of the window.
class Divider : public QWidget {
public:
    Divider(Qt::Orientation orientation, QWidget* parent) : QWidget(parent) {
        if (orientation == Qt::Horizontal)
            setFixedHeight(1);
        else
            setFixedWidth(1);
    }

protected:
    void paintEvent(QPaintEvent*) override { QPainter(this).fillRect(rect(), Theme::divider(palette())); }
};

/// The drop is a copy, whatever its source proposes. After a move the source may delete the file.
void acceptAsCopy(QDropEvent& event) {
    event.setDropAction(Qt::CopyAction);
    event.accept();
}

}  // namespace

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
    // Qt would give the focus to the first button, although no ring shows it there.
    setFocus();
}

void MainWindow::fitInto(const QSize& room) {
    // About as much as desktops draw around a window. The exact size is known only after it is shown.
    constexpr QSize frame(4, 40);
    setMinimumSize(minimumContentSize.boundedTo(room - frame).expandedTo(layout()->minimumSize()));
}

void MainWindow::showDocument(const QString& name, bool isModified) {
    // Qt puts its mark where "[*]" stands, and "[*][*]" is what stands for itself.
    const QString shown = QString(name).replace(QStringLiteral("[*]"), QStringLiteral("[*][*]"));
    const QString title =
        name.isEmpty() ? QStringLiteral("Vellmora") : shown + QStringLiteral("[*] — Vellmora");
    if (title != windowTitle())
        setWindowTitle(title);
    if (isModified != isWindowModified())
        setWindowModified(isModified);
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event) {
    const QList<QUrl> urls = event->mimeData()->urls();
    if (std::none_of(urls.begin(), urls.end(), [](const QUrl& url) { return url.isLocalFile(); }))
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
    if (m_callbacks.onDrop(event->mimeData()->urls()))
        acceptAsCopy(*event);
    else
        event->ignore();
}

}  // namespace vellmora
