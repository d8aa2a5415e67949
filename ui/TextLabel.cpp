#include "ui/TextLabel.h"

#include "ui/Theme.h"
#include "ui/ToolTip.h"

#include <utility>

#include <QHelpEvent>
#include <QPainter>
#include <QTextLayout>
#include <QToolTip>
#include <QtMath>

namespace vellmora {

namespace {

/// With blanks in place of line breaks and tabs, which a file's name may hold. Runs of blanks stay.
QString onOneLine(QString text) {
    for (QChar& character : text) {
        if (character.isSpace() && character != QChar::Nbsp)
            character = QLatin1Char(' ');
    }
    return text;
}

/// Breaks the text into at most `maximum` lines of this width.
void breakLines(QTextLayout& layout, double width, int maximum) {
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    layout.beginLayout();
    for (int i = 0; i < maximum; ++i) {
        QTextLine line = layout.createLine();
        if (!line.isValid())
            break;
        line.setLineWidth(width);
    }
    layout.endLayout();
}

/// The lines of the text. The last of `maximum` lines ends with an ellipsis where the text is longer.
QStringList elidedLines(const QString& text, const QFont& font, double width, int maximum) {
    QTextLayout layout(text, font);
    breakLines(layout, width, maximum);
    QStringList lines;
    for (int i = 0; i < layout.lineCount(); ++i) {
        const QTextLine line = layout.lineAt(i);
        const bool isLast = i + 1 == maximum;
        lines.append(isLast ? text.mid(line.textStart()) : text.mid(line.textStart(), line.textLength()));
    }
    if (lines.size() == maximum)
        lines.last() = QFontMetricsF(font).elidedText(lines.last(), Qt::ElideRight, width);
    return lines;
}

}  // namespace

TextLabel::TextLabel(const QString& text, const TextFont& font, Color color, QWidget* parent)
    : QLabel(parent), m_font(font), m_color(std::move(color)) {
    setTextFormat(Qt::PlainText);
    setFont(font.font());
    setText(text);
}

void TextLabel::setText(const QString& text) {
    m_heights.clear();
    QLabel::setText(text.normalized(QString::NormalizationForm_C));
}

void TextLabel::setMaximumLines(int lines) {
    m_maximumLines = lines;
    QSizePolicy policy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    policy.setHeightForWidth(lines > 1);
    setSizePolicy(policy);
}

QSize TextLabel::sizeHint() const {
    if (wordWrap())
        return QLabel::sizeHint();
    return {qCeil(m_font.width(text())), m_font.lineHeight()};
}

int TextLabel::heightForWidth(int width) const {
    if (m_maximumLines == 0) {
        if (!m_heights.contains(width))
            m_heights.insert(width, QLabel::heightForWidth(width));
        return m_heights.value(width);
    }
    const bool fitsOneLine = m_font.width(text()) <= width;
    return (fitsOneLine ? 1 : m_maximumLines) * m_font.lineHeight();
}

QSize TextLabel::minimumSizeHint() const {
    if (wordWrap())
        return QLabel::minimumSizeHint();
    return m_maximumLines == 0 ? sizeHint() : QSize(0, sizeHint().height());
}

QStringList TextLabel::shownLines() const {
    const QString line = onOneLine(text());
    if (m_font.width(line) <= width())
        return {line};
    return elidedLines(line, m_font.font(), width(), m_maximumLines);
}

bool TextLabel::event(QEvent* event) {
    const bool isAskedForMore = event->type() == QEvent::ToolTip && m_maximumLines > 0;
    if (!isAskedForMore || shownLines().join(QString()) == onOneLine(text()))
        return QLabel::event(event);
    QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), toolTipOf(text()), this);
    return true;
}

void TextLabel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setPen(m_color(palette()));
    if (wordWrap()) {
        painter.setFont(font());
        painter.drawText(contentsRect(), static_cast<int>(alignment()) | Qt::TextWordWrap, text());
        return;
    }
    if (m_maximumLines == 0) {
        m_font.paint(painter, contentsRect(), alignment(), text());
        return;
    }
    const QStringList lines = shownLines();
    const int lineHeight = m_font.lineHeight();
    const int top = (height() - lineHeight * static_cast<int>(lines.size())) / 2;
    for (qsizetype i = 0; i < lines.size(); ++i) {
        const QRect line(0, top + static_cast<int>(i) * lineHeight, width(), lineHeight);
        m_font.paint(painter, line, alignment(), lines[i]);
    }
}

TextLabel* makeTextOnDark(const QString& text, const TextFont& font, double opacity, QWidget* parent) {
    const auto color = [opacity](const QPalette&) { return Theme::onDark(opacity); };
    auto* label = new TextLabel(text, font, color, parent);
    label->setAlignment(Qt::AlignCenter);
    return label;
}

}  // namespace vellmora
