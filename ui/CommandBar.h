#pragma once

#include "ui/Symbols.h"
#include "ui/TextLabel.h"
#include "ui/Theme.h"

#include <optional>

#include <QAction>
#include <QHBoxLayout>
#include <QList>
#include <QWidget>

namespace vellmora {

/// A row of plain text buttons, one for each command, and the status text at its right end, or below it where
/// the window leaves no room for that. A command's action brings its text, its shortcut, and whether it is
/// enabled.
class CommandBar : public QWidget {
    Q_OBJECT

public:
    static constexpr int padding = 12;

    /// The actions must outlive the bar.
    CommandBar(const QList<QAction*>& commands, const Theme& theme, QWidget* parent);

    /// A text that is longer than its line can be read in the tooltip. A sign stands before one that tells
    /// of a problem.
    void setStatus(const QString& text, bool isProblem);
    QWidget& statusLabel() { return *m_status; }
    /// How much of some long work is done, 0 to 1: a thin bar below the buttons. Nothing hides it.
    void setProgress(std::optional<double> progress);

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QHBoxLayout* makeButtons(const QList<QAction*>& commands, const Theme& theme);

    TextLabel* m_status;
    SymbolView* m_problemSign = nullptr;  ///< made when there is a problem
    int m_signSize;
    QBoxLayout* m_lines;
    QHBoxLayout* m_statusLine;
    int m_oneLineWidth = 0;  ///< with less, the status has a line of its own
    std::optional<double> m_progress;
};

}  // namespace vellmora
