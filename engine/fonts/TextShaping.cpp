#include "engine/fonts/TextShaping.h"

#include <algorithm>
#include <fribidi.h>

#include <QList>

namespace vellmora {

namespace {

using Characters = QList<uint>;

/// Characters that are shaped together.
struct Run {
    qsizetype start;
    qsizetype length;
    FriBidiLevel level;
    hb_script_t script;
    const FontFace* face;

    bool isRightToLeft() const { return level % 2 != 0; }
};

std::vector<FriBidiLevel> embeddingLevels(const Characters& text, bool isRightToLeft) {
    const auto length = static_cast<FriBidiStrIndex>(text.size());
    std::vector<FriBidiCharType> types(static_cast<size_t>(length));
    std::vector<FriBidiBracketType> brackets(types.size());
    std::vector<FriBidiLevel> levels(types.size());
    FriBidiParType direction = isRightToLeft ? FRIBIDI_PAR_RTL : FRIBIDI_PAR_LTR;
    fribidi_get_bidi_types(text.constData(), length, types.data());
    fribidi_get_bracket_types(text.constData(), length, types.data(), brackets.data());
    const FriBidiLevel levelCount =
        fribidi_get_par_embedding_levels_ex(types.data(), brackets.data(), length, &direction, levels.data());
    if (levelCount == 0)  // for want of memory
        std::fill(levels.begin(), levels.end(), FriBidiLevel{0});
    return levels;
}

/// One face for all of the line where there is one: letters of two faces side by side look odd.
const FontFace* commonFace(const Characters& text, const FontFaces& faces, FontWeight weight) {
    for (size_t i = 0; i < FontFaces::count(weight); ++i) {
        const FontFace& face = faces.at(i, weight);
        if (std::all_of(text.begin(), text.end(), [&](uint c) { return face.has(c); }))
            return &face;
    }
    return nullptr;
}

/// What belongs to all scripts (blanks, digits, marks) goes with what stands before it.
hb_script_t scriptOf(uint character, hb_script_t before) {
    const hb_script_t script = hb_unicode_script(hb_unicode_funcs_get_default(), character);
    const bool isShared = script == HB_SCRIPT_COMMON || script == HB_SCRIPT_INHERITED;
    return isShared && before != HB_SCRIPT_INVALID ? before : script;
}

const FontFace* faceOf(uint character, const FontFace* before, const FontFaces& faces, FontWeight weight) {
    if (before != nullptr && (QChar::isMark(character) || QChar::category(character) == QChar::Other_Format))
        return before;
    const FontFace* face = faces.faceFor(character, weight);
    return face != nullptr ? face : &faces.at(0, weight);  // which shows an empty box
}

/// In the order of the text.
std::vector<Run> runsOf(const Characters& text, bool isRightToLeft, const FontFaces& faces,
                        FontWeight weight) {
    const std::vector<FriBidiLevel> levels = embeddingLevels(text, isRightToLeft);
    const FontFace* common = commonFace(text, faces, weight);
    std::vector<Run> runs;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const Run* before = runs.empty() ? nullptr : &runs.back();
        const FriBidiLevel level = levels[static_cast<size_t>(i)];
        const hb_script_t script = scriptOf(text[i], before != nullptr ? before->script : HB_SCRIPT_INVALID);
        const FontFace* face =
            common != nullptr ? common
                              : faceOf(text[i], before != nullptr ? before->face : nullptr, faces, weight);
        if (before != nullptr && before->level == level && before->script == script && before->face == face)
            ++runs.back().length;
        else
            runs.push_back({i, 1, level, script, face});
    }
    return runs;
}

/// From the order of the text to that of the eye (Unicode's annex 9, rule L2).
void reorder(std::vector<Run>& runs) {
    FriBidiLevel highest = 0;
    for (const Run& run : runs)
        highest = std::max(highest, run.level);
    for (FriBidiLevel level = highest; level > 0; --level) {
        const auto isInside = [&](const Run& run) { return run.level >= level; };
        for (auto from = runs.begin(); from != runs.end();) {
            from = std::find_if(from, runs.end(), isInside);
            const auto to = std::find_if_not(from, runs.end(), isInside);
            std::reverse(from, to);
            from = to;
        }
    }
}

/// The end of the text that a glyph stands for: where that of another glyph of the run begins.
std::vector<qsizetype> clusterEnds(const hb_glyph_info_t* glyphs, unsigned count, const Run& run) {
    std::vector<qsizetype> ends(count, run.start + run.length);
    for (unsigned k = 1; k < count; ++k) {
        const unsigned i = run.isRightToLeft() ? k : count - 1 - k;
        const unsigned next = run.isRightToLeft() ? i - 1 : i + 1;
        ends[i] = glyphs[i].cluster == glyphs[next].cluster ? ends[next] : glyphs[next].cluster;
    }
    return ends;
}

void shapeRun(const Characters& text, const Run& run, hb_buffer_t* buffer, std::vector<ShapedGlyph>& result) {
    hb_buffer_reset(buffer);
    hb_buffer_set_cluster_level(buffer, HB_BUFFER_CLUSTER_LEVEL_MONOTONE_CHARACTERS);
    hb_buffer_add_utf32(buffer, text.constData(), static_cast<int>(text.size()),
                        static_cast<unsigned>(run.start), static_cast<int>(run.length));
    hb_buffer_set_direction(buffer, run.isRightToLeft() ? HB_DIRECTION_RTL : HB_DIRECTION_LTR);
    hb_buffer_set_script(buffer, run.script);
    hb_shape(run.face->font(), buffer, nullptr, 0);
    unsigned count = 0;
    const hb_glyph_info_t* glyphs = hb_buffer_get_glyph_infos(buffer, &count);
    const hb_glyph_position_t* positions = hb_buffer_get_glyph_positions(buffer, &count);
    const std::vector<qsizetype> ends = clusterEnds(glyphs, count, run);
    for (unsigned i = 0; i < count; ++i) {
        const qsizetype start = glyphs[i].cluster;
        const bool isFirst = i == 0 || glyphs[i - 1].cluster != glyphs[i].cluster;
        result.push_back(
            {run.face, glyphs[i].codepoint,
             isFirst ? QString::fromUcs4(reinterpret_cast<const char32_t*>(&text[start]), ends[i] - start)
                     : QString(),
             run.face->thousandths(positions[i].x_advance), run.face->thousandths(positions[i].x_offset),
             run.face->thousandths(positions[i].y_offset)});
    }
}

}  // namespace

std::vector<ShapedGlyph> shapeLine(const QString& line, bool isRightToLeft, const FontFaces& faces,
                                   FontWeight weight) {
    const Characters text = line.toUcs4();
    if (text.isEmpty())
        return {};
    std::vector<Run> runs = runsOf(text, isRightToLeft, faces, weight);
    reorder(runs);
    std::vector<ShapedGlyph> result;
    const std::unique_ptr<hb_buffer_t, decltype(&hb_buffer_destroy)> buffer(hb_buffer_create(),
                                                                            &hb_buffer_destroy);
    for (const Run& run : runs)
        shapeRun(text, run, buffer.get(), result);
    return result;
}

}  // namespace vellmora
