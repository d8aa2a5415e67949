#pragma once

#include "ui/GroupBox.h"
#include "ui/SidebarData.h"
#include "ui/TextLabel.h"

namespace vellmora {

/// The box with the program's name: page, counts of stamps and entries, and where they are kept.
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

}  // namespace vellmora
