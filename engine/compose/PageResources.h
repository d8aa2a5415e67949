#pragma once

#include "engine/file/ParsedFile.h"
#include "engine/output/ObjectCopier.h"

#include <optional>
#include <vector>

namespace vellmora {

/// The page's content streams in order.
std::vector<QPDFObjectHandle> contentStreamsOf(const ParsedPage& page);

/// Whether resources have so few pictures, forms and fonts that nobody needs to look for those that the page
/// does not use. Throws `NotPlain`.
bool hasFewEntries(const PlainObject& resources, const PlainFile& file);

/// The resources that pages get in an output.
class PageResources {
public:
    explicit PageResources(ObjectCopier& copier) : m_copier(copier) {}

    /// The page's resources, copied, without the pictures, forms and fonts that only other pages use: some
    /// producers give every page the resources of the whole document. Empty where the page has none. `file`
    /// is the short way to them; null where there is none.
    QPDFObjectHandle of(const ParsedPage& page, const PlainFile* file);
    /// What was copied before is not given again.
    void forget() { m_last = m_lastInWords = QPDFObjectHandle(); }

private:
    QPDFObjectHandle copyOfWhole();
    std::optional<QPDFObjectHandle> copyInWords(const QPDFObjectHandle& resources, const PlainFile& file);

    ObjectCopier& m_copier;
    /// What is known of the resources that were asked for last. Consecutive pages often share theirs, and
    /// they may have thousands of entries.
    QPDFObjectHandle m_last;
    bool m_hasMany = false;
    QPDFObjectHandle m_copyOfLast;   ///< shared by pages that use all of it
    QPDFObjectHandle m_lastInWords;  ///< those that were last put into words, and their copy
    QPDFObjectHandle m_copyInWords;
};

}  // namespace vellmora
