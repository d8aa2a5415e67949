#pragma once

#include "tests/support/EventLoop.h"
#include "tests/support/TestImages.h"
#include "ui/Accessibility.h"
#include "ui/MainWindow.h"

#include <gtest/gtest.h>

namespace vellmora::test {

/// The window with a library of a given size; keeps what is called.
class WindowFixture : public testing::Test {
protected:
    static void SetUpTestSuite() { installAccessibility(); }
    WindowFixture() {
        window.resize(MainWindow::minimumContentSize);
        window.show();
        window.activateWindow();
        settle();
    }

    /// The first entries are the recent ones; the first is selected.
    void showLibrary(int count, int recents, bool isBuiltin = false) {
        LibraryContent library;
        for (int i = 0; i < count; ++i) {
            StampPreset preset;
            preset.displayName = QStringLiteral("Stempel %1").arg(i);
            preset.createdAt = QDateTime(QDate(2024, 5, 17), QTime(12, 0));
            preset.lastUsedAt = preset.createdAt.addDays(100);
            if (isBuiltin)
                preset.builtinKey = preset.displayName;
            library.presets.append(preset);
        }
        library.recentPresets = library.presets.mid(0, recents);
        if (count > 0) {
            library.selectedPreset = library.presets.first();
            library.selectedPresetID = library.selectedPreset->id;
        }
        show(library);
    }
    void show(const LibraryContent& library) {
        current = library;
        window.sidebar().setLibrary(library);
        settle();
    }

    MainWindow::Callbacks callbacks() {
        MainWindow::Callbacks result;
        result.commands = {&first, &second};
        const auto note = [this](const char* what) {
            return [this, what](const StampPreset& p) {
                calls.append(QString::fromLatin1(what) + p.displayName);
            };
        };
        const auto pictureOf = [this](const StampPreset& preset) -> DeferredPicture {
            return {preset.id.toString(), [this]() -> std::optional<Image> {
                        ++decodes;
                        return isPictureReadable ? std::optional(Image(plainImage(40, 20, Qt::red)))
                                                 : std::nullopt;
                    }};
        };
        result.sidebar = {note("select "), note("insert "), note("delete "), [] {}, pictureOf};
        result.onDropTargeted = [](bool) {};
        result.onDrop = [](const QList<QUrl>&) { return true; };
        return result;
    }

    QAction first{QStringLiteral("Erster")};
    QAction second{QStringLiteral("Zweiter")};
    QStringList calls;
    LibraryContent current;
    std::atomic<bool> isPictureReadable = true;
    std::atomic<int> decodes = 0;
    MainWindow window{callbacks(), Theme(SystemFonts::load())};
};

}  // namespace vellmora::test
