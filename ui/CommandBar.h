#pragma once

#include "ui/ElidedLabel.h"
#include "ui/Theme.h"

#include <functional>

#include <QKeySequence>
#include <QList>
#include <QPushButton>
#include <QWidget>

namespace vellmora {

/// One command of the bar.
struct Command {
    QString label;
    QKeySequence shortcut;  ///< empty where it has none
    std::function<void()> run;
};

/// A row of plain text buttons, and the status text at its right end.
class CommandBar : public QWidget {
    Q_OBJECT

public:
    struct Data {
        QList<bool> enabled;  ///< one for each command, in their order
        QString statusText;
    };

    CommandBar(const QList<Command>& commands, const Theme& theme, QWidget* parent);

    void setData(const Data& newData);

private:
    void addShortcut(const Command& command, const QPushButton& button);

    QList<QPushButton*> m_buttons;
    ElidedLabel* m_status;
};

}  // namespace vellmora
