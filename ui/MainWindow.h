#pragma once

#include "platform/drop/ItemProvider.h"
#include "ui/CommandBar.h"
#include "ui/EditorArea.h"
#include "ui/Sidebar.h"
#include "ui/Theme.h"

#include <functional>

#include <QWidget>

namespace vellmora {

/// The window: command bar across the top, sidebar on the left, editor area on the right. Files can be
/// dropped anywhere in it.
class MainWindow : public QWidget {
    Q_OBJECT

public:
    static constexpr QSize minimumContentSize{1220, 800};

    struct Callbacks {
        QList<QAction*> commands;  ///< they must outlive the window
        SidebarCallbacks sidebar;
        std::function<void(bool)> onDropTargeted;
        /// True where the drop is accepted.
        std::function<bool(const ItemProviders&)> onDrop;
    };

    MainWindow(const Callbacks& callbacks, const Theme& theme);

    /// Lowers the minimum as far as a screen with this much room for windows needs it to show the whole
    /// window with its frame, but never below what the parts need.
    void fitInto(const QSize& room);

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
