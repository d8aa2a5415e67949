#pragma once

#include "engine/appearance/TextWriter.h"

#include <vector>

namespace vellmora {

/// Breaks a text at words into lines, for one width after another. Words are measured once.
class LineBreaks {
public:
    LineBreaks(const QString& text, const TextWriter& writer);

    /// Lines no wider than `width` ems, where a single word is not wider.
    std::vector<TextLine> lines(double width) const;
    size_t count(double width) const { return starts(width).size(); }

private:
    struct Word {
        qsizetype start;
        qsizetype end;
        double width;  ///< in thousandths of an em
        bool isFirst;  ///< of its paragraph
        bool isRightToLeft;
    };

    /// The words that lines begin with.
    std::vector<size_t> starts(double width) const;

    QString m_text;
    std::vector<Word> m_words;
    double m_blank;
};

}  // namespace vellmora
