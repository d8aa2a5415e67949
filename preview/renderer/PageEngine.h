#pragma once

#include <QByteArray>
#include <QImage>

#include <QPdfDocument>

namespace vellmora {

/// Turns PDFs of single pages into pixels. Starts no threads.
class PageEngine {
public:
    /// Makes the engine look up the system's fonts, as it does with the first text of a document that lacks a
    /// font. Later it only reads those that it found.
    void findFonts();

    /// Draws a part of the one page of `pagePdf` onto `target`, which is as large as the part, on white. The
    /// whole page is `pageSize` pixels large. `target` is of QImage::Format_RGB32. False where the page
    /// cannot be drawn.
    bool render(const QByteArray& pagePdf, QSize pageSize, const QRect& part, QImage& target);

private:
    /// The engine forgets the fonts with its last document.
    QPdfDocument m_first;
};

}  // namespace vellmora
