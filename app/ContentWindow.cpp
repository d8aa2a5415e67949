#include "app/ContentWindow.h"

#include "base/Error.h"

#include <utility>

#include <QAction>
#include <QCoreApplication>
#include <QEvent>
#include <QGuiApplication>
#include <QShortcut>

namespace vellmora {

namespace {

const auto refreshEvent = static_cast<QEvent::Type>(QEvent::registerEventType());

}  // namespace

ContentWindow::ContentWindow(std::unique_ptr<ContentView> content, PageRenderer& renderer, const Theme& theme)
    : m_content(std::move(content)),
      m_renderer(renderer),
      m_commands(makeCommands()),
      m_window(std::make_unique<MainWindow>(makeCallbacks(), theme)),
      m_announcer(*m_content, *m_window),
      m_bridge{m_content->pdfDocument, m_content->stampsByPage, m_content->currentPageIndex,
               m_content->selectedStampID} {
    observe(m_content->pdfDocument);
    observe(m_content->firstLook);
    observe(m_content->stampsByPage);
    observe(m_content->currentPageIndex);
    observe(m_content->selectedStampID);
    observe(m_content->statusText);
    observe(m_content->isStatusProblem);
    observe(m_content->isPDFDropTargeted);
    observe(m_content->pdfSourceURL);
    observe(m_content->workProgress);
    m_cancel = new QShortcut(Qt::Key_Escape, m_window.get(), [this] { m_content->cancelWork(); });
    m_cancel->setEnabled(false);
    connect(&m_content->stampLibrary(), &StampLibrary::objectWillChange, this, [this] {
        m_hasLibraryChanged = true;
        scheduleRefresh();
    });
    connect(m_content.get(), &ContentView::didReport, this, &ContentWindow::scheduleRefresh);
    connect(m_content.get(), &ContentView::willWork, this, &ContentWindow::beginWork);
    connect(m_content.get(), &ContentView::worksLong, this, &ContentWindow::showWaitCursor);
    connect(m_content.get(), &ContentView::didWork, this, &ContentWindow::endWork);
    m_observers.push_back(m_content->pdfDocument.addNotifier([this] { m_nextFocus = Focus::page; }));
    connect(m_content.get(), &ContentView::willPlaceStamp, this,
            [this](const QByteArray& imageData, const Image& image) {
                m_nextFocus = Focus::selectedStamp;
                if (m_editor)
                    m_editor->stampPictures().add(imageData, image);
            });
    refresh();
}

ContentWindow::~ContentWindow() = default;

/// Of the exception that is being handled.
static QString commandFailed() {
    return QStringLiteral("Befehl fehlgeschlagen: ") + Error::current().localizedDescription();
}

/// Runs what a view asked for. Qt ends the program where an exception reaches its event loop.
template <typename Action>
void ContentWindow::attempt(Action action) {
    try {
        action();
    } catch (...) {
        m_content->report(commandFailed(), ContentView::Outcome::problem);
    }
}

/// The action as a command: it does nothing while another one is at work.
template <typename Action>
auto ContentWindow::command(Action action) {
    return [this, action](const auto&... arguments) {
        if (!m_isWorking)
            attempt([&] { action(arguments...); });
    };
}

QList<ContentWindow::Command> ContentWindow::makeCommands() {
    ContentView& content = *m_content;
    using SaveMode = ContentView::SaveMode;
    QList<Command> commands;
    const auto add = [&](const QString& text, const QKeySequence& shortcut, std::function<void()> run,
                         std::function<bool()> isAllowed) {
        auto* action = new QAction(text, this);
        action->setShortcut(shortcut);
        action->setAutoRepeat(false);
        connect(action, &QAction::triggered, this, command([run = std::move(run)](bool) { run(); }));
        commands.append({action, std::move(isAllowed)});
    };
    const auto always = [] { return true; };
    const auto hasDocument = [&] { return content.pdfDocument.value() != nullptr; };
    add(
        QStringLiteral("PDF öffnen"), Qt::CTRL | Qt::Key_O, [&] { content.openPDF(); }, always);
    add(
        QStringLiteral("Stempel importieren"), Qt::CTRL | Qt::Key_I, [&] { content.importStampToLibrary(); },
        always);
    add(
        QStringLiteral("Stempel auf aktueller Seite"), {},
        [&] { content.addStampToCurrentPage(content.stampLibrary().selectedPreset()); },
        [&, hasDocument] { return hasDocument() && content.stampLibrary().selectedPreset().has_value(); });
    add(
        QStringLiteral("Ausgewählten löschen"), {}, [this] { deleteSelectedStamp(); },
        [&] { return content.selectedStampID.value().has_value(); });
    add(
        ContentView::actionLabel(SaveMode::overwriteOriginal), Qt::CTRL | Qt::Key_S,
        [&] { content.beginSaveFlow(SaveMode::overwriteOriginal); },
        [&, hasDocument] { return hasDocument() && content.pdfSourceURL.value().has_value(); });
    add(
        ContentView::actionLabel(SaveMode::saveAs), Qt::CTRL | Qt::SHIFT | Qt::Key_S,
        [&] { content.beginSaveFlow(SaveMode::saveAs); }, hasDocument);
    return commands;
}

void ContentWindow::beginWork() {
    m_isWorking = true;
    m_cancel->setEnabled(true);
}

/// A command cannot be chosen from now on. Where the one that is at work had the focus, it gets it again.
void ContentWindow::showWaitCursor() {
    if (std::exchange(m_showsWaitCursor, true))
        return;
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    m_focusBefore = m_window->focusWidget();
    enableCommands();
}

/// The clicks and keys that came at the end of the work are delivered here, while no second command runs.
void ContentWindow::endWork() {
    QCoreApplication::processEvents();
    m_isWorking = false;
    m_cancel->setEnabled(false);
    if (!std::exchange(m_showsWaitCursor, false))
        return;
    QGuiApplication::restoreOverrideCursor();
    enableCommands();
    if (m_focusBefore)
        m_focusBefore->setFocus();
}

void ContentWindow::enableCommands() {
    for (const Command& command : m_commands)
        command.action->setEnabled(command.isAllowed() && !m_showsWaitCursor);
}

MainWindow::Callbacks ContentWindow::makeCallbacks() {
    ContentView& content = *m_content;
    MainWindow::Callbacks callbacks;
    for (const Command& command : m_commands)
        callbacks.commands.append(command.action);
    callbacks.sidebar = {
        [&](const StampPreset& preset) { attempt([&] { content.stampLibrary().selectPreset(preset.id); }); },
        command([&](const StampPreset& preset) { content.addStampToCurrentPage(preset); }),
        command([&](const StampPreset& preset) { content.removePreset(preset.id); }),
        command([&] { content.importStampToLibrary(); }),
        [&](const StampPreset& preset) { return content.stampLibrary().deferredPicture(preset); },
    };
    callbacks.onDropTargeted = [&](bool isTargeted) { content.isPDFDropTargeted = isTargeted; };
    callbacks.onDrop = [&](const QList<QUrl>& items) {
        bool isAccepted = false;
        attempt([&] { isAccepted = content.handlePDFDrop(items); });
        return isAccepted;
    };
    return callbacks;
}

template <typename T>
void ContentWindow::observe(QProperty<T>& field) {
    m_observers.push_back(field.addNotifier([this] { scheduleRefresh(); }));
}

/// The refresh comes after all events that are queued already. A report of the editor that is among them has
/// then been written into the workspace, so the refresh does not show the state before it.
void ContentWindow::scheduleRefresh() {
    if (std::exchange(m_isRefreshScheduled, true))
        return;
    QCoreApplication::postEvent(this, new QEvent(refreshEvent), Qt::LowEventPriority);
}

bool ContentWindow::event(QEvent* event) {
    if (event->type() != refreshEvent)
        return QObject::event(event);
    m_isRefreshScheduled = false;
    try {
        refresh();
    } catch (...) {
        // A report would have it refreshed again, and so on where that fails each time.
        m_content->isStatusProblem = true;
        m_content->statusText = commandFailed();
    }
    return true;
}

void ContentWindow::refresh() {
    const auto firstLook = m_content->firstLook.value();
    const bool hasDocument = firstLook || m_content->pdfDocument.value();
    if (hasDocument && !m_editor)
        makeEditor();
    m_window->editorArea().setData({hasDocument, m_content->isPDFDropTargeted});
    if (firstLook)
        m_editor->showFirstLook(firstLook);
    else if (m_editor)
        m_bridge.updateView(*m_editor);
    // Before the control that has the focus is disabled or goes away, and Qt moves it.
    moveFocus();
    enableCommands();
    showTitle();
    m_window->commandBar().setStatus(m_content->statusText, m_content->isStatusProblem);
    m_window->commandBar().setProgress(m_content->workProgress);
    m_window->sidebar().setFigures(workspaceFigures());
    if (std::exchange(m_hasLibraryChanged, false))
        m_window->sidebar().setLibrary(libraryContent());
    m_announcer.tellChanges();
}

void ContentWindow::showTitle() {
    const bool hasDocument = m_content->pdfDocument.value() != nullptr;
    m_window->showDocument(hasDocument ? m_content->defaultSaveAsFilename() : QString(),
                           hasDocument && m_content->hasUnsavedStamps());
}

/// Nothing is deleted unseen: the page that the stamp lies on is turned to.
void ContentWindow::deleteSelectedStamp() {
    const std::optional<qsizetype> page = m_content->pageOfSelectedStamp();
    if (page && m_editor)
        m_editor->displayPage(*page);
    m_content->deleteSelectedStamp();
    m_nextFocus = Focus::page;
}

void ContentWindow::makeEditor() {
    m_editor = m_bridge.makeView(m_renderer, &m_window->editorArea());
    m_editor->nameOfStamp = [this](const StampItem& stamp) { return nameOfStamp(stamp); };
    m_editor->onStampDeleted = [this](const QUuid& id) {
        // Behind the editor's reports, which are queued as well.
        QMetaObject::invokeMethod(
            this, [this, id] { command([this, id] { deleteStamp(id); })(); }, Qt::QueuedConnection);
    };
    m_announcer.watch(*m_editor);
    m_window->editorArea().setEditor(m_editor);
}

void ContentWindow::deleteStamp(const QUuid& id) {
    m_content->selectedStampID = id;
    m_content->deleteSelectedStamp();
    m_nextFocus = Focus::page;
}

void ContentWindow::moveFocus() {
    const Focus next = std::exchange(m_nextFocus, Focus::stay);
    if (next == Focus::stay || !m_editor)
        return;
    m_focusBefore = nullptr;
    const std::optional<QUuid> stamp = m_content->selectedStampID;
    if (next == Focus::selectedStamp && stamp)
        m_editor->focusStamp(*stamp, m_lastInput.focusReason());
    else
        m_editor->focusPage(m_lastInput.focusReason());
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
