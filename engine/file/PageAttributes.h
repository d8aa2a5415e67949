#pragma once

#include "engine/file/ParsedFile.h"

namespace vellmora {

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
