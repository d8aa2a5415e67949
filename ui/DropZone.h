#pragma once

#include "ui/Theme.h"

#include <QLabel>
#include <QWidget>

namespace vellmora {

/// The framed invitation to drop a PDF.
class DropZone : public QWidget {
    Q_OBJECT

public:
    DropZone(const Theme& theme, QWidget* parent);

    /// True while a drag hovers over the window.
    void setTargeted(bool isTargeted);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QLabel* m_title;
    bool m_isTargeted = false;
};

}  // namespace vellmora
