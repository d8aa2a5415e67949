#include "app/ContentWindow.h"
#include "base/Error.h"
#include "preview/ProcessRenderer.h"
#include "tests/editor/EditorTestSupport.h"
#include "tests/support/EventLoop.h"
#include "tests/support/GTestQt.h"
#include "tests/support/TestDocuments.h"
#include "tests/support/TestImages.h"
#include "tests/support/TestPdf.h"
#include "tests/support/TestWorkspace.h"

#include <csignal>
#include <new>

#include <QDropEvent>
#include <QMimeData>
#include <QTest>

using namespace vellmora;
using namespace vellmora::test;

namespace {

/// The real window on a real library, driven through its widgets.
class ContentWindowTest : public testing::Test {
protected:
    ContentWindowTest() {
        writeFile(workspace.path(QStringLiteral("Vertrag.pdf")), pages(3).bytes());
        start();
    }
    void start() {
        shown = std::make_unique<ContentWindow>(
            std::make_unique<ContentView>(workspace.makeLibrary(), workspace.panels, documentProcesses()),
            renderer, Theme(SystemFonts::load()));
        shown->window().show();
        shown->window().activateWindow();
        if (!QTest::qWaitForWindowActive(&shown->window()))
            qFatal("the window does not become active");
        settle();
    }
    ContentView& content() { return shown->content(); }
    QPushButton& button(const char* label) {
        for (auto* candidate : shown->window().findChildren<QPushButton*>()) {
            if (candidate->text() == QString::fromUtf8(label))
                return *candidate;
        }
        qFatal("no button %s", label);
    }
    void click(const char* label) {
        QTest::mouseClick(&button(label), Qt::LeftButton);
        settle();
    }
    void open(const char* name) {
        workspace.panels.answer = workspace.url(QString::fromUtf8(name));
        QTest::keyClick(&shown->window(), Qt::Key_O, Qt::ControlModifier);
        settle();
    }
    /// Of the bar, in order, and of the active stamp.
    QList<bool> enabledCommands() {
        QList<bool> enabled;
        for (const char* label : {"PDF öffnen", "Stempel importieren", "Stempel auf aktueller Seite",
                                  "Ausgewählten löschen", "Speichern", "Speichern unter…"})
            enabled.append(button(label).isEnabled());
        enabled.append(button("Einfügen").isEnabled());
        return enabled;
    }
    /// The action that the window answers with, where it accepts.
    std::optional<Qt::DropAction> send(QDropEvent&& event) {
        event.ignore();
        QApplication::sendEvent(&shown->window(), &event);
        settle();
        return event.isAccepted() ? std::optional(event.dropAction()) : std::nullopt;
    }
    /// As where the user holds the Shift key: the source would rather move.
    template <typename DragEvent>
    std::optional<Qt::DropAction> sendDrag(const QMimeData& data) {
        return send(
            DragEvent({600, 400}, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, Qt::ShiftModifier));
    }

    TestWorkspace workspace;
    ProcessRenderer renderer{QStringLiteral(VELLMORA_RENDERER)};
    std::unique_ptr<ContentWindow> shown;
};

}  // namespace

TEST_F(ContentWindowTest, DoesTheWholeJobAndRemembersTheLibrary) {
    open("Vertrag.pdf");
    EXPECT_EQ(content().statusText.value(), QStringLiteral("PDF geladen: Vertrag.pdf"));
    PresetTile& second = *shown->window().findChildren<PresetTile*>().at(1);
    QTest::mouseClick(&second, Qt::LeftButton, {}, {60, 60});
    QTest::mouseDClick(&second, Qt::LeftButton, {}, {60, 60});
    settle();
    const QUuid used = content().stampLibrary().selectedPreset()->id;
    ASSERT_EQ(content().totalStampCount(), 1);

    const StampItem placed = content().stampsByPage.value().value(0).first();
    EXPECT_EQ(placed.presetID, used);
    InteractiveStampView& view = *shown->editor()->stampView(placed.id);
    EXPECT_TRUE(view.isSelectedStamp());
    drag(view, {20, 10}, 60, 40);
    settle();
    const QPointF handle(view.width() - 4, view.height() - 4);
    drag(view, handle, 30, 0);
    settle();
    const StampItem moved = content().stampsByPage.value().value(0).first();
    EXPECT_GT(moved.rect.width, placed.rect.width * 1.1);
    EXPECT_NEAR(moved.rect.width / moved.rect.height, placed.aspectRatio, 0.15);

    QTest::keyClick(&shown->window(), Qt::Key_S, Qt::ControlModifier);
    EXPECT_EQ(content().statusText.value(), QStringLiteral("Original überschrieben: Vertrag.pdf"));
    workspace.panels.answer = workspace.url(QStringLiteral("Kopie.pdf"));
    QTest::keyClick(&shown->window(), Qt::Key_S, Qt::ControlModifier | Qt::ShiftModifier);
    ASSERT_EQ(content().statusText.value(), QStringLiteral("PDF gespeichert: Kopie.pdf"));
    EXPECT_EQ(openDocument(workspace.url(QStringLiteral("Kopie.pdf")))->pageCount(), 3);

    start();
    EXPECT_EQ(content().stampLibrary().presets().size(), 5);
    EXPECT_EQ(content().stampLibrary().selectedPreset()->id, used);
    EXPECT_EQ(content().stampLibrary().recentPresets().value(0).id, used);
}

TEST_F(ContentWindowTest, EnablesCommandsAsTheStateAllows) {
    EXPECT_EQ(enabledCommands(), (QList<bool>{true, true, false, false, false, false, false}));
    QTest::keyClick(&shown->window(), Qt::Key_S, Qt::ControlModifier);
    EXPECT_EQ(content().statusText.value(),
              QStringLiteral("PDF laden, Stempelbibliothek füllen und loslegen."));
    open("Vertrag.pdf");
    EXPECT_EQ(enabledCommands(), (QList<bool>{true, true, true, false, true, true, true}));
    click("Stempel auf aktueller Seite");
    EXPECT_EQ(enabledCommands(), (QList<bool>{true, true, true, true, true, true, true}));
    click("Ausgewählten löschen");
    EXPECT_EQ(enabledCommands(), (QList<bool>{true, true, true, false, true, true, true}));
    content().pdfSourceURL = std::nullopt;
    settle();
    EXPECT_EQ(enabledCommands(), (QList<bool>{true, true, true, false, false, true, true}));
}

TEST_F(ContentWindowTest, ShortcutsAskForTheRightFile) {
    open("Vertrag.pdf");
    workspace.panels.answer = std::nullopt;
    const auto asked = [&](Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::ControlModifier) {
        workspace.panels.opened.clear();
        workspace.panels.saved.clear();
        QTest::keyClick(&shown->window(), key, modifiers);
        if (!workspace.panels.saved.isEmpty())
            return workspace.panels.saved.first().title;
        return workspace.panels.opened.isEmpty() ? QString() : workspace.panels.opened.first().title;
    };
    EXPECT_EQ(asked(Qt::Key_O), QStringLiteral("PDF auswählen"));
    EXPECT_EQ(asked(Qt::Key_I), QStringLiteral("PNG-Stempel zur Bibliothek hinzufügen"));
    EXPECT_EQ(asked(Qt::Key_S, Qt::ControlModifier | Qt::ShiftModifier),
              QStringLiteral("PDF speichern unter"));
    EXPECT_EQ(asked(Qt::Key_S), QString());
    EXPECT_EQ(content().statusText.value(), QStringLiteral("Original überschrieben: Vertrag.pdf"));
}

TEST_F(ContentWindowTest, NoExceptionThatLeavesACommandEndsTheProgram) {
    std::function<void()> fail;
    QObject::connect(&content().stampLibrary(), &StampLibrary::objectWillChange, [&] { fail(); });
    const auto statusAfter = [&](const std::function<void()>& failure) {
        fail = failure;
        QTest::mouseClick(shown->window().findChild<PresetTile*>(), Qt::LeftButton, {}, {60, 60});
        fail = [] {};
        settle();
        return content().statusText.value();
    };
    EXPECT_EQ(statusAfter([] { throw std::bad_alloc(); }),
              QStringLiteral("Befehl fehlgeschlagen: Der Arbeitsspeicher reicht nicht aus."));
    EXPECT_EQ(statusAfter([] { throw 7; }),
              QStringLiteral("Befehl fehlgeschlagen: Ein unerwarteter Fehler ist aufgetreten."));
    EXPECT_EQ(statusAfter([] { throw Error(Error::pdfDomain, 1, QStringLiteral("Der Grund.")); }),
              QStringLiteral("Befehl fehlgeschlagen: Der Grund."));

    // A command of the bar: the field that it writes is observed.
    open("Vertrag.pdf");
    click("Stempel auf aktueller Seite");
    const auto observer = content().stampsByPage.addNotifier([] { throw std::bad_alloc(); });
    click("Ausgewählten löschen");
    EXPECT_EQ(content().statusText.value(),
              QStringLiteral("Befehl fehlgeschlagen: Der Arbeitsspeicher reicht nicht aus."));
}

TEST_F(ContentWindowTest, ADropOfAFileLoadsItAndShowsTheZoneMeanwhile) {
    QMimeData text;
    text.setText(QStringLiteral("no file"));
    EXPECT_FALSE(sendDrag<QDragEnterEvent>(text));
    QMimeData file;
    file.setUrls({workspace.url(QStringLiteral("Vertrag.pdf"))});
    EXPECT_EQ(sendDrag<QDragEnterEvent>(file), Qt::CopyAction) << "a move might delete the file";
    EXPECT_TRUE(content().isPDFDropTargeted.value());
    EXPECT_EQ(sendDrag<QDragMoveEvent>(file), Qt::CopyAction);
    EXPECT_EQ(sendDrag<QDropEvent>(file), Qt::CopyAction);
    EXPECT_FALSE(content().isPDFDropTargeted.value());
    EXPECT_EQ(content().statusText.value(), QStringLiteral("PDF geladen: Vertrag.pdf"));
    ASSERT_TRUE(shown->editor());
    EXPECT_TRUE(shown->editor()->isVisible());
}

TEST_F(ContentWindowTest, PageTurnsAndStampsOfOtherPagesStayApart) {
    open("Vertrag.pdf");
    click("Stempel auf aktueller Seite");
    QTest::keyClick(&shown->editor()->pdfView(), Qt::Key_PageDown);
    settle();
    EXPECT_EQ(content().pageDisplayText(), QStringLiteral("2 / 3"));
    EXPECT_EQ(shown->editor()->currentPageIndex(), 1) << "a page turn is not turned back by the refresh";
    click("Stempel auf aktueller Seite");
    EXPECT_EQ(content().statusText.value().left(26), QStringLiteral("Stempel auf Seite 2 eingef"));
    EXPECT_EQ(content().totalStampCount(), 2);
    open("Vertrag.pdf");
    EXPECT_EQ(shown->editor()->currentPageIndex(), 0);
    EXPECT_EQ(content().pageDisplayText(), QStringLiteral("1 / 3"));
}

TEST_F(ContentWindowTest, WhatIsClickedDuringWorkRunsNoSecondCommand) {
    open("Vertrag.pdf");
    const auto presets = content().stampLibrary().presets();
    const auto clickEverything = [&] {
        workspace.panels.opened.clear();
        for (const char* label :
             {"PDF öffnen", "Stempel auf aktueller Seite", "PNG hinzufügen", "Einfügen", "Entfernen"})
            QTest::mouseClick(&button(label), Qt::LeftButton);
        shown->window().findChild<PresetTile*>()->insert();
        shown->window().findChild<PresetTile*>()->remove();
    };
    // Delivered at the end of the work, as clicks are that came while it lasted.
    QMetaObject::invokeMethod(&content(), clickEverything, Qt::QueuedConnection);
    content().loadPDF(workspace.url(QStringLiteral("Vertrag.pdf")));
    EXPECT_EQ(content().statusText.value(), QStringLiteral("PDF geladen: Vertrag.pdf"));
    EXPECT_TRUE(workspace.panels.opened.isEmpty());
    EXPECT_EQ(content().totalStampCount(), 0);
    EXPECT_EQ(content().stampLibrary().presets(), presets);
    click("Einfügen");
    EXPECT_EQ(content().totalStampCount(), 1) << "afterwards they run again";
}

TEST_F(ContentWindowTest, ShowsTheWaitCursorFromWhenWorkTakesLongToItsEnd) {
    const auto shape = [] {
        const QCursor* cursor = QGuiApplication::overrideCursor();
        return cursor ? std::optional(cursor->shape()) : std::nullopt;
    };
    Q_EMIT content().willWork();
    EXPECT_EQ(shape(), std::nullopt);
    Q_EMIT content().worksLong();
    EXPECT_EQ(shape(), Qt::WaitCursor);
    Q_EMIT content().didWork();
    EXPECT_EQ(shape(), std::nullopt);
    Q_EMIT content().willWork();
    Q_EMIT content().didWork();
    EXPECT_EQ(shape(), std::nullopt) << "short work leaves the cursor alone";

    Q_EMIT content().willWork();
    Q_EMIT content().worksLong();
    const auto loadDroppedFile = [this] {
        Q_EMIT content().willWork();
        Q_EMIT content().worksLong();
        Q_EMIT content().didWork();
    };
    QMetaObject::invokeMethod(&content(), loadDroppedFile, Qt::QueuedConnection);
    Q_EMIT content().didWork();
    EXPECT_EQ(shape(), std::nullopt) << "after work that came in between";
}

TEST_F(ContentWindowTest, TakesNoSecondDocumentWhileOneIsLoadedAndTheLoadCanBeCancelled) {
    const QString path = workspace.path(QStringLiteral("Angehalten.pdf"));
    writeFile(path, pages(1).bytes());
    // A process that never answers: only the user ends this before its time is over.
    qputenv("VELLMORA_LIE", "silent");
    DocumentProcesses silent(QStringLiteral(VELLMORA_LYING_DOCUMENT));
    ContentView other(workspace.makeLibrary(), workspace.panels, silent);
    QList<std::optional<double>> progress;
    int turns = 0;
    const auto observer = other.workProgress.addNotifier([&] { progress.append(other.workProgress); });
    const auto text = other.statusText.addNotifier([&] {
        if (other.statusText.value() == QStringLiteral("PDF wird geladen…") && ++turns == 1) {
            EXPECT_TRUE(other.isWorking());
            EXPECT_FALSE(other.handlePDFDrop({QUrl::fromLocalFile(path)}));
            other.loadPDF(QUrl::fromLocalFile(path));
            other.cancelWork();
        }
    });
    other.loadPDF(QUrl::fromLocalFile(path));
    qunsetenv("VELLMORA_LIE");
    EXPECT_EQ(turns, 1);
    EXPECT_EQ(other.statusText.value(), QStringLiteral("Laden abgebrochen."));
    EXPECT_FALSE(other.pdfDocument.value());
    EXPECT_FALSE(other.isWorking());
    ASSERT_FALSE(progress.isEmpty());
    EXPECT_EQ(progress.last(), std::nullopt);
}

TEST_F(ContentWindowTest, EscapeCancelsASaveAndLeavesEverythingAsItWas) {
    content().loadPDF(workspace.url(QStringLiteral("Vertrag.pdf")));
    content().addStampToCurrentPage(content().stampLibrary().selectedPreset());
    const auto document = content().pdfDocument.value();
    const auto press = content().statusText.addNotifier([&] {
        if (content().statusText.value() == QStringLiteral("PDF wird gespeichert…")) {
            EXPECT_FALSE(button("Speichern").isEnabled());
            QMetaObject::invokeMethod(
                &shown->window(), [&] { QTest::keyClick(&shown->window(), Qt::Key_Escape); },
                Qt::QueuedConnection);
        }
    });
    const QByteArray before = readFile(workspace.path(QStringLiteral("Vertrag.pdf")));
    const pid_t stopped = *document->processID();
    ::kill(stopped, SIGSTOP);
    content().beginSaveFlow(ContentView::SaveMode::overwriteOriginal);
    EXPECT_EQ(content().statusText.value(), QStringLiteral("Speichern abgebrochen."));
    EXPECT_EQ(readFile(workspace.path(QStringLiteral("Vertrag.pdf"))), before);
    EXPECT_EQ(content().totalStampCount(), 1);
    settle();
    ::kill(stopped, SIGKILL);  // a page may be waiting for it, too
    EXPECT_TRUE(button("Speichern").isEnabled());
    content().beginSaveFlow(ContentView::SaveMode::overwriteOriginal);
    EXPECT_EQ(content().statusText.value(), QStringLiteral("Original überschrieben: Vertrag.pdf"));
}
