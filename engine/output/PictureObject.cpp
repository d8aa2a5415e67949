#include "engine/output/PictureObject.h"

namespace vellmora {

namespace {

using Handle = QPDFObjectHandle;

constexpr int pngPredictor = 15;  // each row names its own filter
constexpr size_t bytesPerColor = 3;

/// An object of its own for the palette's colours, so that it is compressed with the other objects.
Handle makePalette(QPDF& output, const std::string& colors) {
    Handle space = Handle::newArray();
    space.appendItem(Handle::newName("/Indexed"));
    space.appendItem(Handle::newName("/DeviceRGB"));
    space.appendItem(Handle::newInteger(static_cast<int>(colors.size() / bytesPerColor) - 1));
    space.appendItem(output.makeIndirectObject(Handle::newString(colors)));
    return space;
}

Handle makeColorSpace(QPDF& output, const EncodedSamples& samples) {
    switch (samples.colors) {
        case EncodedSamples::Colors::palette:
            return makePalette(output, samples.palette);
        case EncodedSamples::Colors::rgb:
            return Handle::newName("/DeviceRGB");
        case EncodedSamples::Colors::gray:
            break;
    }
    return Handle::newName("/DeviceGray");
}

Handle makeFilterParameters(const EncodedSamples& samples) {
    if (!samples.hasPredictor)
        return Handle::newNull();
    Handle parameters = Handle::newDictionary();
    parameters.replaceKey("/Predictor", Handle::newInteger(pngPredictor));
    parameters.replaceKey("/Colors", Handle::newInteger(samples.components()));
    parameters.replaceKey("/BitsPerComponent", Handle::newInteger(samples.bitsPerComponent));
    parameters.replaceKey("/Columns", Handle::newInteger(samples.width));
    return parameters;
}

void fillSampleObject(QPDF& output, Handle object, const EncodedSamples& samples) {
    object.replaceStreamData(samples.data, Handle::newName("/FlateDecode"), makeFilterParameters(samples));
    Handle dictionary = object.getDict();
    dictionary.replaceKey("/Type", Handle::newName("/XObject"));
    dictionary.replaceKey("/Subtype", Handle::newName("/Image"));
    dictionary.replaceKey("/Width", Handle::newInteger(samples.width));
    dictionary.replaceKey("/Height", Handle::newInteger(samples.height));
    dictionary.replaceKey("/ColorSpace", makeColorSpace(output, samples));
    dictionary.replaceKey("/BitsPerComponent", Handle::newInteger(samples.bitsPerComponent));
}

}  // namespace

void fillPictureObject(QPDF& output, const QPDFObjectHandle& stream, const EncodedPicture& picture) {
    fillSampleObject(output, stream, picture.colors);
    if (!picture.alpha)
        return;
    const Handle mask = output.newStream();
    fillSampleObject(output, mask, *picture.alpha);
    Handle(stream).getDict().replaceKey("/SMask", mask);
}

}  // namespace vellmora
