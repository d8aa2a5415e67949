#pragma once

#include "ui/TextFont.h"

#include <functional>

#include <QHash>
#include <QLabel>

namespace vellmora {

/// A text in a colour of the theme, which follows the palette.
class TextLabel : public QLabel {
    Q_OBJECT

public:
    using Color = std::function<QColor(const QPalette&)>;

    TextLabel(const QString& text, const TextFont& font, Color color, QWidget* parent);

    /// Letters with accents are put together first, as some systems take them apart in the names of files.
    void setText(const QString& text);

    /// From now on the text has at most this many lines, 1 or 2. An ellipsis ends a text that is longer; all
    /// of it is in a tooltip then. The label takes whatever width its layout gives it. A label on which this
    /// is never called has one line, or with `setWordWrap` as many as its text needs.
    void setMaximumLines(int lines);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    bool hasHeightForWidth() const override { return m_maximumLines > 1 || wordWrap(); }
    int heightForWidth(int width) const override;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    /// What is painted where the lines are limited.
    QStringList shownLines() const;

    TextFont m_font;
    Color m_color;
    int m_maximumLines = 0;
    mutable QHash<int, int> m_heights;  ///< of all lines, by width
};

/// A centred line of white text with this opacity, for the editor area and its drop zones.
TextLabel* makeTextOnDark(const QString& text, const TextFont& font, double opacity, QWidget* parent);

}  // namespace vellmora
