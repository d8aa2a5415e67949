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

    /// From now on the text has at most this many lines, 1 or 2, and an ellipsis ends a text that is longer.
    /// The label takes whatever width its layout gives it. A label on which this is never called has one
    /// line, or with `setWordWrap` as many as its text needs.
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

/// A centred line of white text with this opacity, for the editor area and its drop zones.
TextLabel* makeTextOnDark(const QString& text, const QFont& font, double opacity, QWidget* parent);

}  // namespace vellmora
