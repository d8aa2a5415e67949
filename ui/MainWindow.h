#pragma once

#include "ui/CommandBar.h"
#include "ui/EditorArea.h"
#include "ui/Sidebar.h"
#include "ui/Theme.h"

#include <functional>

#include <QUrl>
#include <QWidget>

namespace vellmora {

/// The window: command bar across the top, sidebar on the left, editor area on the right. Files can be
/// dropped anywhere in it.
class MainWindow : public QWidget {
    Q_OBJECT

public:
    static constexpr QSize minimumContentSize{1220, 800};

    struct Callbacks {
        QList<QAction*> commands;  ///< must outlive the window
        SidebarCallbacks sidebar;
        std::function<void(bool)> onDropTargeted;
        /// Gets the URLs that were dropped, of files or not, and returns whether the drop is accepted.
        std::function<bool(const QList<QUrl>&)> onDrop;
    };

    MainWindow(const Callbacks& callbacks, const Theme& theme);

    /// Lowers the window's least size where a screen has less room for windows than it takes. It never gets
    /// below the least sizes of the window's parts.
    void fitInto(const QSize& room);

    /// Names the document in the title bar, with the desktop's mark for one that is not saved. An empty name:
    /// there is none.
    void showDocument(const QString& name, bool isModified);

    CommandBar& commandBar() { return *m_commandBar; }
    Sidebar& sidebar() { return *m_sidebar; }
    EditorArea& editorArea() { return *m_editorArea; }

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    Callbacks m_callbacks;
    CommandBar* m_commandBar;
    Sidebar* m_sidebar;
    EditorArea* m_editorArea;
};

}  // namespace vellmora
