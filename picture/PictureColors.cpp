#include "picture/PictureColors.h"

#include <algorithm>

namespace vellmora {

namespace {

/// Fewest bits whose evenly spread levels from 0 to 255 include this one.
int bitsForLevel(int level) {
    if (level % 255 == 0)
        return 1;
    if (level % 85 == 0)
        return 2;
    return level % 17 == 0 ? 4 : 8;
}

using LevelsSeen = std::array<bool, 256>;

int bitsForLevels(const LevelsSeen& seen) {
    int bits = 1;
    for (int level = 0; level < 256; ++level) {
        if (seen[static_cast<size_t>(level)])
            bits = std::max(bits, bitsForLevel(level));
    }
    return bits;
}

}  // namespace

size_t Palette::slotOf(QRgb color) const {
    size_t slot = (color * 0x9e3779b1U) >> 22;  // multiplicative hashing: the upper ten bits of the product
    while (m_slots[slot].isTaken && m_slots[slot].color != color)
        slot = (slot + 1) % m_slots.size();
    return slot;
}

bool Palette::add(QRgb color) {
    color &= RGB_MASK;
    Slot& slot = m_slots[slotOf(color)];
    if (slot.isTaken)
        return true;
    if (m_colors.size() == maxColors)
        return false;
    slot = {color, true, static_cast<uchar>(m_colors.size())};
    m_colors.push_back(color);
    return true;
}

std::string Palette::bytes() const {
    std::string bytes;
    for (const QRgb color : m_colors) {
        bytes += static_cast<char>(qRed(color));
        bytes += static_cast<char>(qGreen(color));
        bytes += static_cast<char>(qBlue(color));
    }
    return bytes;
}

int PictureColors::paletteBits() const {
    for (const int bits : {1, 2, 4}) {
        if (palette.size() <= size_t(1) << bits)
            return bits;
    }
    return 8;
}

PictureColors PictureColors::of(const QImage& image) {
    PictureColors colors;
    LevelsSeen grays{};
    LevelsSeen alphas{};
    const int width = image.width();
    const bool hasAlpha = image.hasAlphaChannel();
    for (int y = 0; y < image.height(); ++y) {
        if (!hasAlpha && !colors.isGray && !colors.hasPalette)
            break;
        const auto* row = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        QRgb last = ~row[0];
        for (int x = 0; x < width; ++x) {
            const QRgb pixel = row[x];
            if (pixel == last)
                continue;
            last = pixel;
            alphas[static_cast<size_t>(qAlpha(pixel))] = true;
            colors.isGray = colors.isGray && qIsGray(pixel);
            grays[static_cast<size_t>(qRed(pixel))] = true;
            colors.hasPalette = colors.hasPalette && colors.palette.add(pixel);
        }
    }
    colors.grayBits = bitsForLevels(grays);
    colors.alphaBits = bitsForLevels(alphas);
    alphas[255] = false;
    colors.isOpaque = !hasAlpha || alphas == LevelsSeen{};
    return colors;
}

}  // namespace vellmora
