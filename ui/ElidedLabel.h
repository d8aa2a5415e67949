#pragma once

#include <QLabel>

namespace vellmora {

/// A label of one line that is cut off with an ellipsis where its text is too long for it.
class ElidedLabel : public QLabel {
    Q_OBJECT

public:
    explicit ElidedLabel(QWidget* parent);

    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
};

}  // namespace vellmora
