#pragma once

#include <array>
#include <string>
#include <vector>

#include <QImage>

namespace vellmora {

/// The distinct colours of a picture, whatever their alpha, as long as they are few.
class Palette {
public:
    static constexpr size_t maxColors = 256;

    /// False, and without effect, where there is no room for one more.
    bool add(QRgb color);
    /// The place of a colour that was added.
    uchar indexOf(QRgb color) const { return m_slots[slotOf(color & RGB_MASK)].index; }
    size_t size() const { return m_colors.size(); }
    /// Three bytes for each colour.
    std::string bytes() const;

private:
    struct Slot {
        QRgb color = 0;
        bool isTaken = false;
        uchar index = 0;
    };
    size_t slotOf(QRgb color) const;

    /// A hash table with open addressing, at most a quarter full.
    std::array<Slot, 4 * maxColors> m_slots;
    std::vector<QRgb> m_colors;
};

/// What a picture's pixels allow to leave out.
struct PictureColors {
    bool isGray = true;
    int grayBits = 1;  ///< fewest bits that hold each level of grey: 1, 2, 4 or 8
    bool isOpaque = true;
    int alphaBits = 1;  ///< the same for its alpha
    bool hasPalette = true;
    Palette palette;  ///< complete only where there is one

    /// Fewest bits that hold a place in the palette: 1, 2, 4 or 8.
    int paletteBits() const;

    /// `image` is RGB32 or ARGB32.
    static PictureColors of(const QImage& image);
};

}  // namespace vellmora
