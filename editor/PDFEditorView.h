#pragma once

#include "editor/EditorHostView.h"

#include <QObject>
#include <QProperty>

namespace vellmora {

/// Bridges four fields of the workspace, as two-way bindings, to one `EditorHostView`: pushes their values
/// into it, and writes the host's reports back. Every write back is deferred to a later turn of the main
/// queue.
struct PDFEditorView {
    QBindable<std::shared_ptr<const PDFDocument>> pdfDocument;
    QBindable<StampsByPage> stampsByPage;
    QBindable<qsizetype> currentPageIndex;
    QBindable<std::optional<QUuid>> selectedStampID;

    class Coordinator;

    /// Makes the view, called once. Its reports live as long as it does. `renderer` must outlive it.
    EditorHostView* makeView(PageRenderer& renderer, QWidget* parentWidget) const;
    /// To be called after any change of the bound state.
    void updateView(EditorHostView& host) const;
};

/// Writes the host's reports into the bindings of the bridge that it was made from.
class PDFEditorView::Coordinator : public QObject {
public:
    Coordinator(const PDFEditorView& parent, QObject* owner);

    void setPageIndex(qsizetype index);
    /// A stamp that is no longer in its page's list is dropped silently.
    void setStamp(const StampItem& stamp);
    void setSelectedStamp(const std::optional<QUuid>& id);

private:
    PDFEditorView m_parent;
};

}  // namespace vellmora
