#pragma once

#include "ui/Theme.h"

#include <QVBoxLayout>
#include <QWidget>

namespace vellmora {

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
    QFont m_titleFont;
    QVBoxLayout* m_content;
};

}  // namespace vellmora
