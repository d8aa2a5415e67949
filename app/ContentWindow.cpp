#include "app/ContentWindow.h"

#include <utility>

#include <QCoreApplication>
#include <QEvent>
#include <QGuiApplication>

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
    connect(&m_content->stampLibrary(), &StampLibrary::objectWillChange, this, [this] {
        m_hasLibraryChanged = true;
        scheduleRefresh();
    });
    connect(m_content.get(), &ContentView::willWork, this, &ContentWindow::beginWork);
    connect(m_content.get(), &ContentView::worksLong, this, &ContentWindow::showWaitCursor);
    connect(m_content.get(), &ContentView::didWork, this, &ContentWindow::endWork);
    connect(m_content.get(), &ContentView::willPlaceStamp, this,
            [this](const QByteArray& imageData, const Image& image) {
                if (m_editor)
                    m_editor->stampPictures().add(imageData, image);
            });
    refresh();
}

ContentWindow::~ContentWindow() = default;

template <typename Action>
auto ContentWindow::unlessWorking(Action action) {
    return [this, action](const auto&... arguments) {
        if (!m_isWorking)
            action(arguments...);
    };
}

QList<Command> ContentWindow::makeCommands() {
    ContentView& content = *m_content;
    using SaveMode = ContentView::SaveMode;
    QList<Command> commands{
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
    for (Command& command : commands)
        command.run = unlessWorking(command.run);
    return commands;
}

void ContentWindow::beginWork() {
    m_isWorking = true;
}

void ContentWindow::showWaitCursor() {
    if (!std::exchange(m_showsWaitCursor, true))
        QGuiApplication::setOverrideCursor(Qt::WaitCursor);
}

/// What the user clicked meanwhile is delivered now, and runs no second command. A file dropped meanwhile is
/// loaded now, in between.
void ContentWindow::endWork() {
    QCoreApplication::processEvents();
    if (std::exchange(m_showsWaitCursor, false))
        QGuiApplication::restoreOverrideCursor();
    m_isWorking = false;
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
    callbacks.sidebar = {
        [&](const StampPreset& preset) { content.stampLibrary().selectPreset(preset.id); },
        unlessWorking([&](const StampPreset& preset) { content.addStampToCurrentPage(preset); }),
        unlessWorking([&](const StampPreset& preset) { content.removePreset(preset.id); }),
        unlessWorking([&] { content.importStampToLibrary(); }),
        [&](const StampPreset& preset) { return content.stampLibrary().pictureSource(preset); },
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
    if (hasDocument && !m_editor)
        makeEditor();
    m_window->commandBar().setData({enabledCommands(), m_content->statusText});
    m_window->sidebar().setFigures(workspaceFigures());
    if (std::exchange(m_hasLibraryChanged, false))
        m_window->sidebar().setLibrary(libraryContent());
    m_window->editorArea().setData({hasDocument, m_content->isPDFDropTargeted});
    if (m_editor)
        m_bridge.updateView(*m_editor);
}

void ContentWindow::makeEditor() {
    m_editor = m_bridge.makeView(m_renderer, &m_window->editorArea());
    m_editor->nameOfStamp = [this](const StampItem& stamp) { return nameOfStamp(stamp); };
    m_window->editorArea().setEditor(m_editor);
    m_editor->setFocus();
}

QString ContentWindow::nameOfStamp(const StampItem& stamp) const {
    for (const StampPreset& preset : m_content->stampLibrary().presets()) {
        if (preset.id == stamp.presetID)
            return QStringLiteral("Stempel ") + preset.displayName;
    }
    return QStringLiteral("Stempel");
}

WorkspaceFigures ContentWindow::workspaceFigures() const {
    const qsizetype onPage = m_content->stampsByPage.value().value(m_content->currentPageIndex).size();
    return {m_content->pageDisplayText(), m_content->totalStampCount(), onPage,
            m_content->pdfDocument.value() != nullptr};
}

LibraryContent ContentWindow::libraryContent() const {
    const StampLibrary& library = m_content->stampLibrary();
    return {library.presets(), library.recentPresets(), library.selectedPreset(), library.selectedPresetID()};
}

}  // namespace vellmora
