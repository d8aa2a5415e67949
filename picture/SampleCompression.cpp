#include "picture/SampleCompression.h"

#include "picture/DeflateStream.h"
#include "picture/RowFilter.h"

#include <algorithm>
#include <future>
#include <limits>
#include <thread>

#include <zlib.h>

namespace vellmora {

namespace {

struct Way {
    bool isFiltered = false;
    int level = 0;
    int strategy = 0;
};

struct RowRange {
    int first = 0;
    int count = 0;
};

constexpr int quickLevel = 4;
constexpr int thoroughLevel = 6;
/// What shrinks less than this has few repetitions; looking for them thoroughly takes long and gains little.
constexpr double poorRatio = 0.25;

// The rows that the ways are tried on.
constexpr int sampleCount = 8;
constexpr int minRowsInSample = 4;
constexpr size_t bytesInSample = 8 << 10;

// Large pictures are compressed in bands, each on a thread.
constexpr size_t minBytesInBand = 2 << 20;
constexpr int maxBands = 4;

void addRows(DeflateStream& stream, const SampleRows& rows, RowRange range, const Way& way) {
    RowFilter filter(static_cast<size_t>(rows.components), rows.bytesPerRow());
    if (way.isFiltered && range.first > 0) {
        rows.copyRow(range.first - 1, filter.row());
        filter.advance();
    }
    for (int y = range.first; y < range.first + range.count; ++y) {
        rows.copyRow(y, filter.row());
        if (way.isFiltered)
            stream.add(filter.filtered().data(), rows.bytesPerRow() + 1);
        else
            stream.add(filter.row(), rows.bytesPerRow());
        filter.advance();
    }
}

std::vector<RowRange> samplesOf(const SampleRows& rows) {
    const int wanted = std::max(minRowsInSample, static_cast<int>(bytesInSample / rows.bytesPerRow()));
    if (rows.height <= wanted * sampleCount)
        return {{0, rows.height}};
    std::vector<RowRange> samples;
    samples.reserve(sampleCount);
    for (int i = 0; i < sampleCount; ++i)
        samples.push_back({static_cast<int>(qint64(rows.height - wanted) * i / (sampleCount - 1)), wanted});
    return samples;
}

Way bestWay(const SampleRows& rows) {
    const std::vector<RowRange> samples = samplesOf(rows);
    size_t sampled = 0;
    for (const RowRange& range : samples)
        sampled += static_cast<size_t>(range.count) * rows.bytesPerRow();
    Way best;
    size_t smallest = std::numeric_limits<size_t>::max();
    for (const bool isFiltered : {false, true}) {
        if (isFiltered && rows.bitsPerComponent < 8)
            break;
        for (const int strategy : {Z_DEFAULT_STRATEGY, Z_RLE}) {
            const Way way{isFiltered, quickLevel, strategy};
            DeflateStream stream(way.level, way.strategy);
            for (const RowRange& range : samples)
                addRows(stream, rows, range, way);
            const size_t size = stream.finish(true).blocks.size();
            if (size >= smallest)
                continue;
            smallest = size;
            best = way;
        }
    }
    if (static_cast<double>(smallest) < poorRatio * static_cast<double>(sampled))
        best.level = thoroughLevel;
    return best;
}

int bandCountOf(const SampleRows& rows) {
    const size_t bytes = rows.bytesPerRow() * static_cast<size_t>(rows.height);
    const int threads = std::clamp(static_cast<int>(std::thread::hardware_concurrency()), 1, maxBands);
    return std::clamp(static_cast<int>(bytes / minBytesInBand), 1, threads);
}

DeflatedPart compressBand(const SampleRows& rows, RowRange range, const Way& way) {
    DeflateStream stream(way.level, way.strategy);
    addRows(stream, rows, range, way);
    return stream.finish(range.first + range.count == rows.height);
}

}  // namespace

CompressedRows compress(const SampleRows& rows) {
    const Way way = bestWay(rows);
    const int bandCount = bandCountOf(rows);
    const auto band = [&](int i) {
        const auto first = static_cast<int>(qint64(rows.height) * i / bandCount);
        const auto end = static_cast<int>(qint64(rows.height) * (i + 1) / bandCount);
        return compressBand(rows, {first, end - first}, way);
    };
    std::vector<std::future<DeflatedPart>> others;
    for (int i = 1; i < bandCount; ++i)
        others.push_back(std::async(band, i));
    std::vector<DeflatedPart> parts;
    parts.push_back(band(0));
    for (std::future<DeflatedPart>& other : others)
        parts.push_back(other.get());
    return {way.isFiltered, zlibStream(parts)};
}

}  // namespace vellmora
