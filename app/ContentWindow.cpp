#include "app/ContentWindow.h"

#include <utility>

#include <QCoreApplication>
#include <QEvent>

namespace vellmora {

namespace {

const auto refreshEvent = static_cast<QEvent::Type>(QEvent::registerEventType());

}  // namespace

ContentWindow::ContentWindow(std::unique_ptr<ContentView> content, PageRenderer& renderer, const Theme& theme)
    : m_content(std::move(content)),
      m_renderer(renderer),
      m_window(std::make_unique<MainWindow>(makeCallbacks(), theme)),
      m_bridge{&m_content->pdfDocument, &m_content->stampsByPage, &m_content->currentPageIndex,
               &m_content->selectedStampID} {
    observe(m_content->pdfDocument);
    observe(m_content->stampsByPage);
    observe(m_content->currentPageIndex);
    observe(m_content->selectedStampID);
    observe(m_content->statusText);
    observe(m_content->isPDFDropTargeted);
    observe(m_content->pdfSourceURL);
    connect(&m_content->stampLibrary(), &StampLibrary::objectWillChange, this,
            &ContentWindow::scheduleRefresh);
    refresh();
}

ContentWindow::~ContentWindow() = default;

QList<Command> ContentWindow::makeCommands() {
    ContentView& content = *m_content;
    using SaveMode = ContentView::SaveMode;
    return {
        {QStringLiteral("PDF öffnen"), QKeySequence(Qt::CTRL | Qt::Key_O), [&] { content.openPDF(); }},
        {QStringLiteral("Stempel importieren"), QKeySequence(Qt::CTRL | Qt::Key_I),
         [&] { content.importStampToLibrary(); }},
        {QStringLiteral("Stempel auf aktueller Seite"),
         {},
         [&] { content.addStampToCurrentPage(content.stampLibrary().selectedPreset()); }},
        {QStringLiteral("Ausgewählten löschen"), {}, [&] { content.deleteSelectedStamp(); }},
        {ContentView::actionLabel(SaveMode::overwriteOriginal), QKeySequence(Qt::CTRL | Qt::Key_S),
         [&] { content.beginSaveFlow(SaveMode::overwriteOriginal); }},
        {ContentView::actionLabel(SaveMode::saveAs), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_S),
         [&] { content.beginSaveFlow(SaveMode::saveAs); }},
    };
}

/// In the order of `makeCommands`.
QList<bool> ContentWindow::enabledCommands() const {
    const bool hasDocument = m_content->pdfDocument.value() != nullptr;
    return {
        true,
        true,
        hasDocument && m_content->stampLibrary().selectedPreset().has_value(),
        m_content->selectedStampID.value().has_value(),
        hasDocument && m_content->pdfSourceURL.value().has_value(),
        hasDocument,
    };
}

MainWindow::Callbacks ContentWindow::makeCallbacks() {
    ContentView& content = *m_content;
    MainWindow::Callbacks callbacks;
    callbacks.commands = makeCommands();
    callbacks.sidebar.library = {
        [&](const QUuid& id) { content.stampLibrary().selectPreset(id); },
        [&](const StampPreset& preset) { content.addStampToCurrentPage(preset); },
        [&](const StampPreset& preset) { return content.stampLibrary().image(preset); },
    };
    callbacks.onDropTargeted = [&](bool isTargeted) { content.isPDFDropTargeted = isTargeted; };
    callbacks.onDrop = [&](const ItemProviders& providers) { return content.handlePDFDrop(providers); };
    return callbacks;
}

template <typename T>
void ContentWindow::observe(QProperty<T>& field) {
    m_observers.push_back(field.addNotifier([this] { scheduleRefresh(); }));
}

/// Refreshes after all that is already queued, so that reports of the editor that are on their way are in the
/// workspace by then and are not overwritten on screen by the state before them.
void ContentWindow::scheduleRefresh() {
    if (std::exchange(m_isRefreshScheduled, true))
        return;
    QCoreApplication::postEvent(this, new QEvent(refreshEvent), Qt::LowEventPriority);
}

bool ContentWindow::event(QEvent* event) {
    if (event->type() != refreshEvent)
        return QObject::event(event);
    m_isRefreshScheduled = false;
    refresh();
    return true;
}

void ContentWindow::refresh() {
    const bool hasDocument = m_content->pdfDocument.value() != nullptr;
    if (hasDocument && !m_editor) {
        m_editor = m_bridge.makeView(m_renderer, &m_window->editorArea());
        m_window->editorArea().setEditor(m_editor);
        m_editor->setFocus();
    }
    m_window->commandBar().setData({enabledCommands(), m_content->statusText});
    const StampLibrary& library = m_content->stampLibrary();
    m_window->sidebar().setData({{library.presets(), library.selectedPresetID()}});
    m_window->editorArea().setData({hasDocument, m_content->isPDFDropTargeted});
    if (m_editor)
        m_bridge.updateView(*m_editor);
}

}  // namespace vellmora
