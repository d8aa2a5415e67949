#pragma once

#include <functional>

#include <QLabel>

namespace vellmora {

/// A text in a colour of the theme, which follows the palette.
class TextLabel : public QLabel {
    Q_OBJECT

public:
    using Color = std::function<QColor(const QPalette&)>;

    TextLabel(const QString& text, const QFont& font, Color color, QWidget* parent);

    /// Breaks lines at the label's width, and cuts the last of `lines` off with an ellipsis. The label is as
    /// wide as its place then. `lines` is 1 or 2. Without it there is one line, or with `setWordWrap` as many
    /// as are needed, and nothing is cut off.
    void setMaximumLines(int lines);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    bool hasHeightForWidth() const override { return m_maximumLines > 1 || wordWrap(); }
    int heightForWidth(int width) const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Color m_color;
    int m_maximumLines = 0;
};

/// A centred line in white of this opacity, for the editor area and its drop zones.
TextLabel* makeTextOnDark(const QString& text, const QFont& font, double opacity, QWidget* parent);

}  // namespace vellmora
