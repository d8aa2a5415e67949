#pragma once

#include "base/Image.h"
#include "library/StampPreset.h"
#include "ui/PresetGrid.h"
#include "ui/PresetRow.h"
#include "ui/TextLabel.h"
#include "ui/Theme.h"

#include <functional>
#include <optional>

#include <QList>
#include <QUuid>
#include <QVBoxLayout>
#include <QWidget>

namespace vellmora {

/// What the sidebar shows of the workspace. It is made and compared at every step of a drag, so it must stay
/// cheap.
struct WorkspaceFigures {
    QString pageDisplayText;
    qsizetype totalStampCount = 0;
    qsizetype currentPageStampCount = 0;
    bool hasDocument = false;
    bool operator==(const WorkspaceFigures&) const = default;
};

/// What the sidebar shows of the library.
struct LibraryContent {
    QList<StampPreset> presets;
    QList<StampPreset> recentPresets;
    std::optional<StampPreset> selectedPreset;
    std::optional<QUuid> selectedPresetID;
};

struct SidebarCallbacks {
    std::function<void(const StampPreset&)> onSelect;
    std::function<void(const StampPreset&)> onInsert;
    std::function<void(const StampPreset&)> onDelete;
    std::function<void()> onImport;
    std::function<DeferredPicture(const StampPreset&)> pictureOf;
};

/// A framed panel with its title above the content, which is a vertical stack.
class GroupBox : public QWidget {
    Q_OBJECT

public:
    /// Space between the frame and the content, and between the items of the content.
    static constexpr int padding = 12;
    static constexpr int itemSpacing = 12;

    GroupBox(QString title, const Theme& theme, QWidget* parent);

    QVBoxLayout& content() { return *m_content; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString m_title;
    TextFont m_titleFont;
    int m_titleHeight;
    QVBoxLayout* m_content;
};

/// The box titled with the program's name: the page, counts of stamps and entries, and where entries are
/// kept.
class StatisticsBox : public GroupBox {
    Q_OBJECT

public:
    StatisticsBox(const Theme& theme, QWidget* parent);

    void setFigures(const WorkspaceFigures& figures);
    void setLibraryCount(qsizetype count);

private:
    TextLabel* addRow(const QString& title, const Theme& theme);

    TextLabel* m_page;
    TextLabel* m_total;
    TextLabel* m_onPage;
    TextLabel* m_library;
};

/// The recently used stamps, a row each. Hidden while there are none. While the pointer rests on it, the rows
/// keep their order.
class RecentsBox : public GroupBox {
    Q_OBJECT

public:
    RecentsBox(SidebarCallbacks callbacks, Thumbnails& thumbnails, Theme theme, QWidget* parent);

    void setPresets(const QList<StampPreset>& presets, const std::optional<QUuid>& selectedPresetID);

    /// The Tab key leads to the rows from this widget, which is not in the box.
    void followInTabOrder(QWidget& before) { m_before = &before; }

protected:
    void leaveEvent(QEvent* event) override;

private:
    void arrangeRows();

    SidebarCallbacks m_callbacks;
    Thumbnails& m_thumbnails;
    Theme m_theme;
    QWidget* m_before = nullptr;
    QList<PresetRow*> m_rows;
    QList<StampPreset> m_presets;  ///< in their own order
    QList<StampPreset> m_shown;
    std::optional<QUuid> m_selectedPresetID;
};

/// The stamp library: a button to add to it, and its entries as a grid of tiles.
class LibraryBox : public GroupBox {
    Q_OBJECT

public:
    LibraryBox(const SidebarCallbacks& callbacks, Thumbnails& thumbnails, const Theme& theme,
               QWidget* parent);

    void setPresets(const QList<StampPreset>& presets, const std::optional<QUuid>& selectedPresetID);
    PresetGrid& grid() { return *m_grid; }

    /// Sets the width of the whole box. To be called before `setPresets`.
    void setBoxWidth(int width);

private:
    TextLabel* m_emptyText;
    PresetGrid* m_grid;
    QBoxLayout* m_header;
};

/// How the program is used, in five lines.
class GuideBox : public GroupBox {
    Q_OBJECT

public:
    GuideBox(const Theme& theme, QWidget* parent);
};

}  // namespace vellmora
