#pragma once

#include "base/SnapshotReader.h"
#include "engine/objects/Qpdf.h"

#include <map>
#include <vector>

namespace vellmora {

/// The numbers of objects that a new file has already, by the objects of the files that they were copied
/// from. Generations other than 0 are passed over: such an object is written once more.
class WrittenObjects {
public:
    void add(const SnapshotReader* file, const QPDFObjGen& source, int number) {
        if (source.getGen() != 0)
            return;
        std::vector<int>& numbers = m_numbers[file];
        const auto place = static_cast<size_t>(source.getObj());
        if (place >= numbers.size())
            numbers.resize(place + 1);
        numbers[place] = number;
    }

    /// 0 for an object that the file does not have.
    int find(const SnapshotReader* file, const QPDFObjGen& source) const {
        const auto numbers = m_numbers.find(file);
        const auto place = static_cast<size_t>(source.getObj());
        if (source.getGen() != 0 || numbers == m_numbers.end() || place >= numbers->second.size())
            return 0;
        return numbers->second[place];
    }

private:
    std::map<const SnapshotReader*, std::vector<int>> m_numbers;
};

}  // namespace vellmora
