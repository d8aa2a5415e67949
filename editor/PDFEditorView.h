#pragma once

#include "editor/EditorHostView.h"

#include <QObject>
#include <QProperty>

namespace vellmora {

/// Binds four fields of the workspace, in both directions, to one `EditorHostView`: shows their values in it,
/// and writes the host's reports back. Every write back waits for a later turn of the event loop. The fields
/// must outlive the bridge and its host. Main thread only.
struct PDFEditorView {
    QProperty<std::shared_ptr<const PDFDocument>>& pdfDocument;
    QProperty<StampsByPage>& stampsByPage;
    QProperty<qsizetype>& currentPageIndex;
    QProperty<std::optional<QUuid>>& selectedStampID;

    class Coordinator;

    /// Makes the view; called once. `renderer` must outlive the view.
    EditorHostView* makeView(PageRenderer& renderer, QWidget* parentWidget) const;
    /// To be called after any change of the bound state.
    void updateView(EditorHostView& host) const;
};

/// Writes the host's reports into the fields of the bridge that it was made from. Owned by the host.
class PDFEditorView::Coordinator : public QObject {
public:
    Coordinator(const PDFEditorView& parent, QObject* owner);

    void setPageIndex(qsizetype index);
    /// Changes this one stamp in place; neither the map nor a list is copied or compared. Does nothing for a
    /// stamp that is no longer in its page's list, or is there as it is given.
    void setStamp(const StampItem& stamp);
    void setSelectedStamp(const std::optional<QUuid>& id);

private:
    PDFEditorView m_parent;
};

}  // namespace vellmora
