#pragma once

#include "engine/file/ParsedFile.h"
#include "engine/output/ObjectCopier.h"

#include <vector>

namespace vellmora {

/// The page's content streams in order.
std::vector<QPDFObjectHandle> contentStreamsOf(const ParsedPage& page);

/// The resources that pages get in an output.
class PageResources {
public:
    explicit PageResources(ObjectCopier& copier) : m_copier(copier) {}

    /// The page's resources, copied, without the pictures, forms and fonts that only other pages use: some
    /// producers give every page the resources of the whole document. Empty where the page has none.
    QPDFObjectHandle of(const ParsedPage& page);
    /// What was copied before is not given again.
    void forget() { m_last = QPDFObjectHandle(); }

private:
    QPDFObjectHandle copyOfWhole();

    ObjectCopier& m_copier;
    /// What is known of the resources that were asked for last. Consecutive pages often share theirs, and
    /// they may have thousands of entries.
    QPDFObjectHandle m_last;
    bool m_hasMany = false;
    QPDFObjectHandle m_copyOfLast;  ///< shared by pages that use all of it
};

}  // namespace vellmora
