#pragma once

#include "engine/file/PageOrientation.h"
#include "engine/file/ParsedFile.h"

#include <optional>
#include <string_view>

namespace vellmora {

/// What a page shows of its space, and which way up.
struct PageFrame {
    /// From what holds for the page, whoever states it.
    PageFrame(const std::optional<Rect>& statedMediaBox, const std::optional<Rect>& statedCropBox,
              int rotation);

    PageOrientation orientation;
    std::optional<Rect> statedCropBox;
    Rect cropBox;  ///< inside the media box
};

/// A box as the text of a plain file states it; nothing where that is no array of numbers. Throws `NotPlain`.
std::optional<Rect> plainBox(std::string_view text);
int plainRotation(std::string_view text);

/// The attributes that a page takes from the nodes above it (ISO 32000-2, table 31).
struct InheritedAttributes {
    QPDFObjectHandle resources = QPDFObjectHandle::newNull();
    QPDFObjectHandle outerResources = QPDFObjectHandle::newNull();
    QPDFObjectHandle mediaBox = QPDFObjectHandle::newNull();
    QPDFObjectHandle cropBox = QPDFObjectHandle::newNull();
    QPDFObjectHandle rotate = QPDFObjectHandle::newNull();

    InheritedAttributes overriddenBy(QPDFObjectHandle node) const;
    /// What a node below states in place of `resources`; a reference is followed when a page is drawn, not
    /// for each page when the file is opened.
    void takeResources(const QPDFObjectHandle& own);
};

/// The page that this dictionary describes, with the attributes that hold for it.
ParsedPage makePage(const QPDFObjectHandle& dictionary, const InheritedAttributes& attributes);

}  // namespace vellmora
