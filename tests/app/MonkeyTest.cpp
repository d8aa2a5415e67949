#include "app/ContentWindow.h"
#include "library/StampPresetJson.h"
#include "preview/ProcessRenderer.h"
#include "tests/app/Invariants.h"
#include "tests/editor/EditorTestSupport.h"
#include "tests/support/EventLoop.h"
#include "tests/support/GTestQt.h"
#include "tests/support/LongRun.h"
#include "tests/support/TestDocuments.h"
#include "tests/support/TestImages.h"
#include "tests/support/TestPdf.h"
#include "tests/support/TestWorkspace.h"

#include <algorithm>
#include <csignal>

#include <QDir>
#include <QDropEvent>
#include <QMimeData>
#include <QPushButton>
#include <QRandomGenerator>
#include <QTest>
#include <QWheelEvent>

using namespace vellmora;
using namespace vellmora::test;

namespace {

/// Does anything that a user can do, in any order, and has things happen to the user's files meanwhile. What
/// must hold of the workspace is checked after each step. VELLMORA_MONKEY_SEED repeats a run,
/// VELLMORA_MONKEY_STEPS sets its length.
class MonkeyTest : public testing::Test {
protected:
    MonkeyTest() {
        const int given = qEnvironmentVariableIntValue("VELLMORA_MONKEY_SEED");
        seed = given ? quint32(given) : QRandomGenerator::global()->bounded(1u, 1u << 30);
        random.seed(seed);
        std::printf("VELLMORA_MONKEY_SEED=%u\n", seed);
        std::fflush(stdout);
        makeFiles();
        start();
    }

    void makeFiles() {
        const QByteArray source = pages(4).bytes();
        writeFile(path("Vertrag.pdf"), source);
        writeFile(path("eine Seite.PDF"), PdfBuilder().page("/Rotate 90 /MediaBox [-50 20 900 400]").bytes());
        writeFile(path("leer.pdf"), {});
        writeFile(path("ohne Seiten.pdf"), PdfBuilder().bytes());
        writeFile(path("halb.pdf"), source.left(source.size() / 2));
        writeFile(path("notes.txt"), "no pdf");
        writeFile(path("Stempel.png"), plainPng(60, 30, Qt::red));
        writeFile(path("schmal.png"), plainPng(3, 300, Qt::blue));
        writeFile(path("kein Bild.png"), "no picture");
        QDir(path("")).mkdir(QStringLiteral("Ordner.pdf"));
    }
    void start() {
        shown.reset();
        shown = std::make_unique<ContentWindow>(
            std::make_unique<ContentView>(workspace.makeLibrary(), workspace.panels, documentProcesses()),
            renderer, Theme(SystemFonts::load()));
        shown->window().show();
        settle();
    }

    QString path(const char* name) const { return workspace.path(QString::fromUtf8(name)); }
    ContentView& content() { return shown->content(); }
    int below(int limit) { return int(random.bounded(limit)); }
    template <typename List>
    auto anyOf(const List& list) {
        return list[below(int(std::size(list)))];
    }

    QString anyDocument() {
        return path(anyOf(QList<const char*>{"Vertrag.pdf", "Vertrag.pdf", "Vertrag.pdf", "eine Seite.PDF",
                                             "leer.pdf", "ohne Seiten.pdf", "halb.pdf", "notes.txt",
                                             "Ordner.pdf", "fehlt.pdf"}));
    }
    QString anyPicture() {
        return path(anyOf(QList<const char*>{"Stempel.png", "Stempel.png", "schmal.png", "schmal.png",
                                             "kein Bild.png", "Ordner.pdf", "fehlt.png"}));
    }
    void answerPanels(const QString& file) {
        workspace.panels.answer = below(6) == 0 ? std::nullopt : std::optional(QUrl::fromLocalFile(file));
    }
    template <typename Widget>
    Widget* anyVisible() {
        QList<Widget*> all = shown->window().findChildren<Widget*>();
        all.removeIf([](const Widget* widget) { return !widget->isVisible() || !widget->isEnabled(); });
        return all.isEmpty() ? nullptr : anyOf(all);
    }
    QPointF anyPoint(const QWidget& widget) {
        return {random.bounded(double(widget.width() + 1)), random.bounded(double(widget.height() + 1))};
    }

    // What a user does.
    void open() {
        answerPanels(anyDocument());
        QTest::keyClick(&shown->window(), Qt::Key_O, Qt::ControlModifier);
    }
    void drop() {
        QMimeData data;
        if (below(5) == 0)
            data.setText(QStringLiteral("no file"));
        else if (below(5) == 0)
            data.setUrls({QUrl(QStringLiteral("https://example.com/a.pdf"))});
        else
            data.setUrls({QUrl::fromLocalFile(anyDocument()), QUrl::fromLocalFile(anyDocument())});
        QDragEnterEvent enter({600, 400}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&shown->window(), &enter);
        if (below(4) == 0) {
            QDragLeaveEvent leave;
            QApplication::sendEvent(&shown->window(), &leave);
            return;
        }
        QDropEvent event({600, 400}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&shown->window(), &event);
    }
    void import() {
        answerPanels(anyPicture());
        QTest::keyClick(&shown->window(), Qt::Key_I, Qt::ControlModifier);
    }
    void save() {
        content().statusText = QStringLiteral("PDF laden, Stempelbibliothek füllen und loslegen.");
        answerPanels(
            path(anyOf(QList<const char*>{"Kopie.pdf", "Vertrag.pdf", "fehlt/Kopie.pdf", "Ordner.pdf"})));
        QTest::keyClick(&shown->window(), Qt::Key_S,
                        below(2) ? Qt::ControlModifier : Qt::ControlModifier | Qt::ShiftModifier);
        const QString status = content().statusText;
        if (!status.startsWith(QStringLiteral("Original überschrieben")) &&
            !status.startsWith(QStringLiteral("PDF gespeichert")))
            return;
        ++saves;
        const auto written = openDocument(*content().pdfSourceURL.value());
        ASSERT_TRUE(written);
        EXPECT_EQ(written->pageCount(), content().pdfDocument.value()->pageCount());
    }
    void clickAButton() {
        answerPanels(below(2) ? anyDocument() : anyPicture());
        if (auto* button = anyVisible<QPushButton>())
            QTest::mouseClick(button, Qt::LeftButton);
    }
    void insertStamp() {
        const qsizetype before = content().totalStampCount();
        content().addStampToCurrentPage(content().stampLibrary().selectedPreset());
        inserts += content().totalStampCount() > before;
    }
    void clickAnItem() {
        auto* item = anyVisible<PresetItem>();
        if (!item)
            return;
        const QPoint point = anyPoint(*item).toPoint();
        QTest::mouseClick(item, Qt::LeftButton, {}, point);
        if (below(2))
            QTest::mouseDClick(item, Qt::LeftButton, {}, point);
    }
    void dragAStamp() {
        auto* view = anyVisible<InteractiveStampView>();
        if (!view)
            return;
        const QPointF handle(view->width() - 4, view->height() - 4);
        drag(*view, below(2) ? handle : anyPoint(*view), below(1200) - 600, below(1200) - 600);
    }
    /// Pressed here, moved over there, perhaps never let go.
    void fumble() {
        auto* widget = anyVisible<QWidget>();
        if (!widget || qobject_cast<QPushButton*>(widget))
            return;
        for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseMove, QEvent::MouseButtonRelease}) {
            if (below(4))
                sendMouse(*widget, type, anyPoint(*widget) * 1.5,
                          below(5) ? Qt::LeftButton : Qt::RightButton);
        }
    }
    void pressAKey() {
        static const QList<Qt::Key> keys{Qt::Key_PageDown, Qt::Key_PageUp, Qt::Key_Home,   Qt::Key_End,
                                         Qt::Key_Tab,      Qt::Key_Space,  Qt::Key_Return, Qt::Key_Escape,
                                         Qt::Key_Delete,   Qt::Key_Left,   Qt::Key_Down,   Qt::Key_Plus,
                                         Qt::Key_Minus,    Qt::Key_0};
        QWidget* target = shown->window().focusWidget();
        QTest::keyClick(target ? target : &shown->window(), anyOf(keys),
                        below(3) ? Qt::NoModifier : Qt::ControlModifier);
    }
    void turnTheWheel() {
        if (!shown->editor())
            return;
        PDFView& view = shown->editor()->pdfView();
        const QPointF at = anyPoint(view);
        QWheelEvent event(at, view.mapToGlobal(at), {}, {0, below(960) - 480}, Qt::NoButton,
                          below(2) ? Qt::NoModifier : Qt::ControlModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(&view, &event);
    }
    void resizeTheWindow() { shown->window().resize(below(2000), below(1400)); }
    void removeAnEntry() {
        if (const auto& presets = content().stampLibrary().presets(); !presets.isEmpty())
            content().removePreset(anyOf(presets).id);
    }
    void letTimePass() { workspace.now = workspace.now.addSecs(below(100000)); }

    // What others do meanwhile.
    void somebodyTouchesTheFiles() {
        switch (below(6)) {
            case 0:
                QFile::remove(path("Vertrag.pdf"));
                break;
            case 1:
                QFile::resize(path("Vertrag.pdf"), 100);
                break;
            case 2:
                writeFile(workspace.metadataFile(), "[broken");
                break;
            case 3:
                if (const QStringList files = QDir(workspace.stampsFolder()).entryList(QDir::Files);
                    !files.isEmpty())
                    QFile::remove(workspace.stampsFolder() + QLatin1Char('/') + anyOf(files));
                break;
            case 4:
                if (const auto process = renderer.processID())
                    ::kill(*process, SIGKILL);
                break;
            default:
                makeFiles();
        }
    }

    void step() {
        struct Action {
            int share;
            void (MonkeyTest::*act)();
        };
        static const QList<Action> actions{{6, &MonkeyTest::open},
                                           {3, &MonkeyTest::drop},
                                           {6, &MonkeyTest::import},
                                           {6, &MonkeyTest::save},
                                           {14, &MonkeyTest::clickAButton},
                                           {8, &MonkeyTest::insertStamp},
                                           {10, &MonkeyTest::clickAnItem},
                                           {16, &MonkeyTest::dragAStamp},
                                           {10, &MonkeyTest::fumble},
                                           {14, &MonkeyTest::pressAKey},
                                           {6, &MonkeyTest::turnTheWheel},
                                           {2, &MonkeyTest::resizeTheWindow},
                                           {2, &MonkeyTest::removeAnEntry},
                                           {3, &MonkeyTest::letTimePass},
                                           {2, &MonkeyTest::somebodyTouchesTheFiles}};
        int shares = 0;
        for (const Action& action : actions)
            shares += action.share;
        int chosen = below(shares);
        for (const Action& action : actions) {
            chosen -= action.share;
            if (chosen < 0)
                return (this->*action.act)();
        }
    }

    quint32 seed = 0;
    int saves = 0;
    int inserts = 0;
    QRandomGenerator random;
    TestWorkspace workspace;
    ProcessRenderer renderer{QStringLiteral(VELLMORA_RENDERER)};
    std::unique_ptr<ContentWindow> shown;
};

}  // namespace

TEST_F(MonkeyTest, NothingThatAUserDoesBreaksTheWorkspace) {
    const int given = qEnvironmentVariableIntValue("VELLMORA_MONKEY_STEPS");
    const int steps = given ? given : isLongRun() ? 20000 : 400;
    constexpr int restartInterval = 100;  // brings removed built-in stamps back
    for (int i = 0; i < steps && !HasFailure(); ++i) {
        SCOPED_TRACE("step " + std::to_string(i) + " of seed " + std::to_string(seed));
        step();
        settle();
        checkInvariants(*shown);
        if (i % restartInterval == restartInterval - 1)
            start();
    }
    std::printf("%d saves, %d stamps\n", saves, inserts);
    // What it can do depends on what has become of its files: in a short run it may find little.
    constexpr int enoughSteps = 2000;
    if (steps >= enoughSteps) {
        EXPECT_GT(saves, steps / 200) << "a monkey that does nothing finds nothing";
        EXPECT_GT(inserts, steps / 200);
    }
}
