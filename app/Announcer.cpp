#include "app/Announcer.h"

#include "ui/Announcement.h"

#include <utility>

#include <QAccessible>
#include <QApplication>
#include <QKeyEvent>

namespace vellmora {

Announcer::Announcer(ContentView& content, MainWindow& window) : m_content(content), m_window(window) {
    connect(&content, &ContentView::didReport, this, [this] { m_hasReport = true; });
}

void Announcer::watch(EditorHostView& editor) {
    m_editor = &editor;
    editor.onStampChanged = [this, report = std::move(editor.onStampChanged)](const StampItem& stamp) {
        report(stamp);
        noteChange(stamp);
    };
}

void Announcer::tellChanges() {
    tellPage();
    tellReport();
    tellSelection();
}

void Announcer::tellReport() {
    if (!std::exchange(m_hasReport, false))
        return;
    const Urgency urgency = m_content.isStatusProblem ? Urgency::assertive : Urgency::polite;
    announce(m_window.commandBar().statusLabel(), m_content.statusText, urgency);
}

/// The first page of another document is told by the report that it was loaded.
void Announcer::tellPage() {
    const auto document = m_content.pdfDocument.value();
    const bool isSameDocument = document == m_document.lock();
    const bool isSamePage = std::exchange(m_page, m_content.currentPageIndex.value()) == m_page;
    m_document = document;
    if (!m_editor || (isSameDocument && isSamePage))
        return;
    PDFView& view = m_editor->pdfView();
    tellDescriptionChanged(view);
    if (isSameDocument)
        announce(view, view.pageDescription());
}

static void tellSelected(InteractiveStampView* view) {
    if (!view || !QAccessible::isActive())
        return;
    QAccessible::State changed;
    changed.selected = true;
    QAccessibleStateChangeEvent event(view, changed);
    QAccessible::updateAccessibility(&event);
}

/// A stamp that has the focus is told by that.
void Announcer::tellSelection() {
    const std::optional<QUuid> selected = m_content.selectedStampID;
    const std::optional<QUuid> before = std::exchange(m_selected, selected);
    if (!m_editor || selected == before)
        return;
    if (before)
        tellSelected(m_editor->stampView(*before));
    InteractiveStampView* view = selected ? m_editor->stampView(*selected) : nullptr;
    tellSelected(view);
    if (view && QAccessible::isActive() && !view->hasFocus())
        announce(*view, QStringLiteral("Ausgewählt: ") + spokenText(*view));
}

/// A drag is told when the button is let go, a move by the keyboard when the key is. The workspace learns of
/// the change only later, so it still knows whether it is one.
void Announcer::noteChange(const StampItem& stamp) {
    const InteractiveStampView* view = m_editor->stampView(stamp.id);
    if (!view || !QAccessible::isActive())
        return;
    if (view->isDraggingInteractively()) {
        m_isInDrag = true;
        return;
    }
    const bool wasDragged = std::exchange(m_isInDrag, false);
    if (!wasDragged && m_content.stampsByPage.value().value(stamp.pageIndex).contains(stamp))
        return;
    m_moved = stamp.id;
    m_keyTarget = wasDragged ? nullptr : QApplication::focusWidget();
    if (m_keyTarget)
        m_keyTarget->installEventFilter(this);
    else
        tellPlace();
}

bool Announcer::eventFilter(QObject* focused, QEvent* event) {
    const bool isRelease =
        event->type() == QEvent::KeyRelease && !static_cast<QKeyEvent*>(event)->isAutoRepeat();
    if (isRelease || event->type() == QEvent::FocusOut) {
        focused->removeEventFilter(this);
        tellPlace();
    }
    return QObject::eventFilter(focused, event);
}

void Announcer::tellPlace() {
    const std::optional<QUuid> moved = std::exchange(m_moved, std::nullopt);
    InteractiveStampView* view = moved ? m_editor->stampView(*moved) : nullptr;
    if (!view || !QAccessible::isActive())
        return;
    tellDescriptionChanged(*view);
    announce(*view, spokenText(*view));
}

}  // namespace vellmora
