#include "engine/appearance/LineBreaks.h"

namespace vellmora {

namespace {

qsizetype endOf(QStringView text, QChar separator, qsizetype from) {
    const qsizetype found = text.indexOf(separator, from);
    return found >= 0 ? found : text.size();
}

}  // namespace

LineBreaks::LineBreaks(const QString& text, const TextWriter& writer)
    : m_text(text), m_blank(writer.width(QStringLiteral(" "))) {
    for (qsizetype paragraph = 0; paragraph <= text.size();) {
        const qsizetype end = endOf(text, QLatin1Char('\n'), paragraph);
        const QStringView line = QStringView(text).left(end);
        const bool isRightToLeft = line.mid(paragraph).isRightToLeft();
        for (qsizetype start = paragraph; start <= end;) {
            const qsizetype wordEnd = endOf(line, QLatin1Char(' '), start);
            m_words.push_back({start, wordEnd, writer.width(text.mid(start, wordEnd - start)),
                               start == paragraph, isRightToLeft});
            start = wordEnd + 1;
        }
        paragraph = end + 1;
    }
}

std::vector<size_t> LineBreaks::starts(double width) const {
    std::vector<size_t> result;
    double lineWidth = 0;
    bool isEmpty = true;
    for (size_t i = 0; i < m_words.size(); ++i) {
        const Word& word = m_words[i];
        const double longer = lineWidth + (isEmpty ? 0 : m_blank) + word.width;
        if (word.isFirst || (!isEmpty && longer / 1000 > width)) {
            result.push_back(i);
            lineWidth = word.width;
            isEmpty = word.start == word.end;
        } else {
            lineWidth = longer;
            isEmpty = isEmpty && word.start == word.end;
        }
    }
    return result;
}

std::vector<TextLine> LineBreaks::lines(double width) const {
    const std::vector<size_t> firsts = starts(width);
    std::vector<TextLine> result;
    for (size_t i = 0; i < firsts.size(); ++i) {
        const size_t next = i + 1 < firsts.size() ? firsts[i + 1] : m_words.size();
        const Word& first = m_words[firsts[i]];
        const qsizetype end = m_words[next - 1].end;
        qsizetype start = first.start;
        while (start < end && m_text[start] == QLatin1Char(' '))  // a line begins with a word
            ++start;
        result.push_back({m_text.mid(start, end - start), first.isRightToLeft});
    }
    return result;
}

}  // namespace vellmora
