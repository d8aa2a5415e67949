#include "engine/output/PictureObject.h"

#include "engine/objects/Characters.h"

#include <string>
#include <string_view>

namespace vellmora {

namespace {

constexpr int pngPredictor = 15;  // each row names its own filter
constexpr size_t bytesPerColor = 3;

std::string entry(std::string_view key, int value) {
    return std::string(key) + ' ' + std::to_string(value);
}

/// Bytes as they are, but for those that would end the string or be read as another end of a line.
std::string stringOf(std::string_view bytes) {
    std::string text = "(";
    for (const char c : bytes) {
        if (isOneOf("()\\", c))
            text += '\\';
        text += c == '\r' ? std::string_view("\\r") : std::string_view(&c, 1);
    }
    return text + ')';
}

/// An object of its own for the palette's colours, so that it is compressed with the other objects.
std::string writePalette(FileWriter& file, const std::string& colors) {
    const int number = file.numbers().reserve();
    file.writeReserved(number, stringOf(colors));
    return entry("[/Indexed/DeviceRGB", static_cast<int>(colors.size() / bytesPerColor) - 1) +
           entry("", number) + " 0 R]";
}

std::string writeColorSpace(FileWriter& file, const EncodedSamples& samples) {
    switch (samples.colors) {
        case EncodedSamples::Colors::palette:
            return writePalette(file, samples.palette);
        case EncodedSamples::Colors::rgb:
            return "/DeviceRGB";
        case EncodedSamples::Colors::gray:
            break;
    }
    return "/DeviceGray";
}

std::string filterParameters(const EncodedSamples& samples) {
    if (!samples.hasPredictor)
        return {};
    return entry("/DecodeParms<</BitsPerComponent", samples.bitsPerComponent) +
           entry("/Colors", samples.components()) + entry("/Columns", samples.width) +
           entry("/Predictor", pngPredictor) + ">>";
}

/// `mask` is the number of the soft mask; 0 for none.
void writeSamples(FileWriter& file, int number, const EncodedSamples& samples, int mask) {
    const std::string entries = entry("/BitsPerComponent", samples.bitsPerComponent) + "/ColorSpace" +
                                writeColorSpace(file, samples) + filterParameters(samples) +
                                "/Filter/FlateDecode" + entry("/Height", samples.height) +
                                (mask > 0 ? entry("/SMask", mask) + " 0 R" : std::string()) +
                                "/Subtype/Image/Type/XObject" + entry("/Width", samples.width);
    file.writeReserved(number, entries, samples.data, Packing::asTheyAre);
}

}  // namespace

void writePicture(FileWriter& file, int number, const EncodedPicture& picture) {
    const int mask = picture.alpha ? file.numbers().reserve() : 0;
    writeSamples(file, number, picture.colors, mask);
    if (picture.alpha)
        writeSamples(file, mask, *picture.alpha, 0);
}

}  // namespace vellmora
