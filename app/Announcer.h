#pragma once

#include "app/ContentView.h"
#include "editor/EditorHostView.h"
#include "ui/MainWindow.h"

#include <memory>
#include <optional>

#include <QObject>
#include <QPointer>

namespace vellmora {

/// Tells assistive tools what happens in a window: what a command reports, that another page is on screen,
/// which stamp is selected, and where a stamp lies once it was moved. Does nothing while no such tool
/// listens. Main thread only.
class Announcer : public QObject {
    Q_OBJECT

public:
    /// Both must outlive the object.
    Announcer(ContentView& content, MainWindow& window);

    /// The editor of the window, from when there is one. Its `onStampChanged` must be set before.
    void watch(EditorHostView& editor);
    /// To be called when the views show the workspace as it is.
    void tellChanges();

protected:
    bool eventFilter(QObject* focused, QEvent* event) override;

private:
    void tellReport();
    void tellPage();
    void tellSelection();
    void noteChange(const StampItem& stamp);
    void tellPlace();

    ContentView& m_content;
    MainWindow& m_window;
    EditorHostView* m_editor = nullptr;
    bool m_hasReport = false;
    std::weak_ptr<const PDFDocument> m_document;
    qsizetype m_page = 0;
    std::optional<QUuid> m_selected;
    bool m_isInDrag = false;
    std::optional<QUuid> m_moved;   ///< a stamp whose new place was not told yet
    QPointer<QWidget> m_keyTarget;  ///< gets the release of the key that moves it
};

}  // namespace vellmora
