// The real window on a user's files, which is killed at a chosen file call of a save or an import:
//
//   stamp_job save|import HOME NTH AFTER
//   stamp_job library HOME ROUNDS 0
//
// Opens HOME/Akten/Vertrag.pdf, puts a stamp on its page, and then saves over it or imports HOME/Kanzlei.png.
// NTH and AFTER say where it dies (see Plan); with 0 it lives and prints how many calls there were. `library`
// imports a stamp into the library of HOME, uses it and removes every second one, over and over. It prints
// "imported", "removing" and "removed" with the stamp's identifier when it is so.

#include "app/ContentWindow.h"
#include "base/Error.h"
#include "preview/ProcessRenderer.h"
#include "tests/faults/FaultShim.h"
#include "tests/support/EventLoop.h"
#include "tests/support/TestDocuments.h"
#include "tests/support/TestWorkspace.h"

#include <cstdio>

#include <QApplication>
#include <QTest>

using namespace vellmora;
using namespace vellmora::test;

namespace {

void tell(const char* what, const QUuid& id) {
    std::printf("%s %s\n", what, qPrintable(id.toString()));
    std::fflush(stdout);
}

/// The library learns of what others do by its own changes only: no event loop runs.
int workOnTheLibrary(const StampLibrary::Environment& environment, const QString& picture, int rounds) {
    try {
        StampLibrary library(environment);
        for (int round = 0; round < rounds; ++round) {
            const StampPreset preset = library.importPreset(QUrl::fromLocalFile(picture));
            tell("imported", preset.id);
            library.recordUse(preset.id);
            if (round % 2 == 0)
                continue;
            tell("removing", preset.id);
            library.removePreset(preset.id);
            tell("removed", preset.id);
        }
    } catch (const Error& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    const QApplication app(argc, argv);
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() != 5)
        return 1;
    const QString& home = arguments[2];
    const bool isSave = arguments[1] == QStringLiteral("save");

    ScriptedPanels panels;
    ProcessRenderer renderer(QStringLiteral(VELLMORA_RENDERER));
    const SystemFonts fonts = SystemFonts::load();
    const Folders folders{home + QStringLiteral("/data"), home + QStringLiteral("/tmp"),
                          home + QStringLiteral("/settings.json")};
    const StampLibrary::Environment environment{folders, systemClock(), panels, fonts};
    if (arguments[1] == QStringLiteral("library"))
        return workOnTheLibrary(environment, home + QStringLiteral("/Kanzlei.png"), arguments[3].toInt());
    auto library = std::make_unique<StampLibrary>(environment);
    ContentWindow shown(std::make_unique<ContentView>(std::move(library), panels, documentProcesses()),
                        renderer, Theme(fonts));
    shown.window().show();
    shown.window().activateWindow();
    if (!QTest::qWaitForWindowActive(&shown.window()))
        return 1;

    const auto press = [&](Qt::Key key, const QString& answer) {
        panels.answer = QUrl::fromLocalFile(home + answer);
        QTest::keyClick(&shown.window(), key, Qt::ControlModifier);
        settle();
    };
    press(Qt::Key_O, QStringLiteral("/Akten/Vertrag.pdf"));
    shown.content().addStampToCurrentPage(shown.content().stampLibrary().selectedPreset());
    shown.content().stampLibrary().finishSaving();
    settle();
    if (shown.content().totalStampCount() != 1)
        return 1;

    faults::Plan plan;
    plan.folder = home.toStdString();
    // What changes files: of other calls those count, too, that load the sidebar's pictures meanwhile. Their
    // notes are left out.
    plan.except = plan.folder + "/data/Vellmora/.decoding";
    plan.kinds = faults::writeCall | faults::syncCall | faults::renameCall | faults::removeCall |
                 faults::attributeCall;
    plan.nth = arguments[3].toInt();
    plan.error = faults::Plan::killed;
    plan.isAfter = arguments[4].toInt() != 0;
    faults::arm(plan);
    press(isSave ? Qt::Key_S : Qt::Key_I, QStringLiteral("/Kanzlei.png"));
    std::printf("%d\n", faults::disarm());
    return 0;
}
