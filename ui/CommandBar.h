#pragma once

#include "ui/Button.h"
#include "ui/TextLabel.h"
#include "ui/Theme.h"

#include <functional>

#include <QKeySequence>
#include <QList>
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
    static constexpr int padding = 12;

    struct Data {
        QList<bool> enabled;  ///< one for each command, in their order
        QString statusText;
    };

    CommandBar(const QList<Command>& commands, const Theme& theme, QWidget* parent);

    void setData(const Data& newData);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void addShortcut(const Command& command, const Button& button);

    QList<Button*> m_buttons;
    TextLabel* m_status;
};

}  // namespace vellmora
