#pragma once

#include "app/Announcer.h"
#include "app/ContentView.h"
#include "app/LastInput.h"
#include "editor/PDFEditorView.h"
#include "preview/PageRenderer.h"
#include "ui/MainWindow.h"

#include <functional>
#include <memory>
#include <vector>

#include <QObject>
#include <QPointer>
#include <QPropertyNotifier>

class QShortcut;

namespace vellmora {

/// Shows a workspace in a window: hands its data and commands to the views, and refreshes them once per turn
/// of the event loop, however many fields changed in it. Main thread only.
///
/// The keyboard stays where the user works: a document that was opened gets the focus, a stamp that was
/// placed, and the page of one that was deleted.
///
/// An exception that leaves a command, whatever it is, becomes the status text.
class ContentWindow : public QObject {
    Q_OBJECT

public:
    /// `renderer` must outlive the window.
    ContentWindow(std::unique_ptr<ContentView> content, PageRenderer& renderer, const Theme& theme);
    ~ContentWindow() override;

    ContentView& content() { return *m_content; }
    MainWindow& window() { return *m_window; }
    /// Null until a document is open.
    EditorHostView* editor() { return m_editor; }

protected:
    bool event(QEvent* event) override;

private:
    /// A command of the bar, and whether the state of the workspace allows it.
    struct Command {
        QAction* action;
        std::function<bool()> isAllowed;
    };
    QList<Command> makeCommands();
    MainWindow::Callbacks makeCallbacks();
    template <typename Action>
    void attempt(Action action);
    template <typename Action>
    auto command(Action action);
    template <typename T>
    void observe(QProperty<T>& field);
    void scheduleRefresh();
    void refresh();
    void beginWork();
    void showWaitCursor();
    void endWork();
    void enableCommands();
    void makeEditor();
    void moveFocus();
    void deleteStamp(const QUuid& id);
    void deleteSelectedStamp();
    void showTitle();
    QString nameOfStamp(const StampItem& stamp) const;
    WorkspaceFigures workspaceFigures() const;
    LibraryContent libraryContent() const;

    std::unique_ptr<ContentView> m_content;
    PageRenderer& m_renderer;
    QList<Command> m_commands;
    std::unique_ptr<MainWindow> m_window;
    Announcer m_announcer;
    PDFEditorView m_bridge;
    EditorHostView* m_editor = nullptr;
    std::vector<QPropertyNotifier> m_observers;
    bool m_isRefreshScheduled = false;
    bool m_hasLibraryChanged = true;
    QShortcut* m_cancel = nullptr;  ///< Escape, while there is work
    bool m_isWorking = false;
    bool m_showsWaitCursor = false;
    QPointer<QWidget> m_focusBefore;
    enum class Focus { stay, page, selectedStamp };
    Focus m_nextFocus = Focus::stay;  ///< where the next refresh moves it to
    LastInput m_lastInput;
};

}  // namespace vellmora
