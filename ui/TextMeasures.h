#pragma once

#include <functional>
#include <optional>

#include <QFont>
#include <QHash>
#include <QString>

namespace vellmora {

/// The room that one text needs, in view points. Layouts ask for it again and again, and each time Qt would
/// shape the text anew. What is known is forgotten with another text or font.
class TextMeasures {
public:
    double widthInOneLine(const QString& text, const QFont& font);
    /// `measure` answers where it is not known for this width.
    int heightFor(int width, const QString& text, const QFont& font, const std::function<int(int)>& measure);

private:
    void take(const QString& text, const QFont& font);

    QString m_text;
    QFont m_font;
    std::optional<double> m_width;
    QHash<int, int> m_heights;  ///< by width
};

}  // namespace vellmora
