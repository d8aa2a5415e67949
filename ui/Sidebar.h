#pragma once

#include "ui/ActiveStampBox.h"
#include "ui/SidebarBoxes.h"
#include "ui/Theme.h"

#include <QScrollArea>

namespace vellmora {

/// The left column of the window: five boxes, scrolled vertically. What gets the focus is scrolled into
/// sight.
class Sidebar : public QScrollArea {
    Q_OBJECT

public:
    static constexpr int columnWidth = 330;
    static constexpr int padding = 16;
    static constexpr int boxSpacing = 16;

    Sidebar(const SidebarCallbacks& callbacks, const Theme& theme, QWidget* parent);

    void setFigures(const WorkspaceFigures& figures);
    void setLibrary(const LibraryContent& library);

    Thumbnails& thumbnails() { return *m_thumbnails; }

    /// The height is the window's. Qt would load the desktop's font to propose one.
    QSize sizeHint() const override { return minimumSizeHint(); }

protected:
    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void applyPalette();
    void keepUnderMouse(const QWidget& box, const QMoveEvent& move);
    void showTilesInSight();
    void scrollToFocus(const QWidget* before, QWidget* now);

    Thumbnails* m_thumbnails;
    QWidget* m_column;
    StatisticsBox* m_statistics;
    ActiveStampBox* m_active;
    RecentsBox* m_recents;
    LibraryBox* m_library;
    WorkspaceFigures m_figures;
};

}  // namespace vellmora
