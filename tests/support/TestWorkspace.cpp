#include "tests/support/TestWorkspace.h"

#include <algorithm>

namespace vellmora::test {

std::optional<QUrl> ScriptedPanels::runModal(const OpenPanel& panel) {
    opened.append(panel);
    return answer;
}

std::optional<QUrl> ScriptedPanels::runModal(const SavePanel& panel) {
    saved.append(panel);
    return answer;
}

TestWorkspace::TestWorkspace() : now(QDate(2025, 3, 7), QTime(9, 30)) {}

Folders TestWorkspace::folders() const {
    return {path(QStringLiteral("data")), path(QStringLiteral("tmp")), path(QStringLiteral("settings.json"))};
}

std::unique_ptr<StampLibrary> TestWorkspace::makeLibrary() {
    return std::make_unique<StampLibrary>(
        StampLibrary::Environment{folders(), [this] { return now; }, panels, SystemFonts::load()});
}

template <typename Predicate>
static StampPreset find(const StampLibrary& library, Predicate predicate) {
    const auto& presets = library.presets();
    const auto found = std::find_if(presets.begin(), presets.end(), predicate);
    if (found == presets.end())
        qFatal("no such preset");
    return *found;
}

StampPreset builtin(const StampLibrary& library, const QString& key) {
    return find(library, [&](const StampPreset& p) { return p.builtinKey == key; });
}

StampPreset named(const StampLibrary& library, const QString& displayName) {
    return find(library, [&](const StampPreset& p) { return p.displayName == displayName; });
}

}  // namespace vellmora::test
