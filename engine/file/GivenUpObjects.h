#pragma once

#include "engine/file/OpenFile.h"
#include "engine/file/TokenMending.h"
#include "engine/objects/Qpdf.h"

#include <memory>
#include <string_view>
#include <vector>

namespace vellmora {

/// What has to be replaced in the file so that libqpdf can parse those objects of their own that it gives
/// up. Parses all objects of the file.
std::vector<Mend> mendsOfGivenUpObjects(QPDF& file, std::string_view bytes);

/// Brings back the objects that libqpdf gives up: they are null, though the file has them. Others are not
/// touched. libqpdf cannot be told to parse an object again, so they come from a mended copy of the file.
class GivenUpObjects {
public:
    /// `file` was opened from `content`, which must outlive it, with the same `damage`. Nothing where no
    /// object can be brought back, else what must outlive `file`. Throws libqpdf's exceptions.
    static std::unique_ptr<GivenUpObjects> bringBack(QPDF& file, const SnapshotReader& content,
                                                     Damage damage);

private:
    GivenUpObjects(std::string_view bytes, const std::vector<Mend>& mends, Damage damage);
    bool replace(QPDF& file, const QPDFObjGen& id);
    bool replaceMembers(QPDF& file, int container, const std::vector<QPDFObjGen>& ids);

    SnapshotReader m_content;
    QPDF m_copy;
};

}  // namespace vellmora
