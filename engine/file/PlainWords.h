#pragma once

#include "engine/file/PlainFile.h"
#include "engine/file/PlainObject.h"

#include <string_view>
#include <vector>

namespace vellmora {

/// A word of an object, or a reference to another object.
struct PlainWord {
    /// Where it is a reference: the key whose value it is, empty for one of an array.
    std::string_view text{};
    int number = 0;  ///< of the object that is referred to; 0 where it is no reference
};

using PlainWords = std::vector<PlainWord>;

/// Adds the words of an object in the order in which a new file gets them: entries by their keys, none that
/// is null. Of a stream the entries without brackets and without the length, which is that of the bytes. The
/// words refer to the text of the object. Throws `NotPlain` where they would have to be others, where a page
/// stands in them, and for colour spaces that may have to be replaced: those of a profile with one component.
void addPlainWords(PlainWords& words, const PlainObject& object, const PlainFile& file);
/// The same of a value that stands in an object that is verbatim.
void addPlainWords(PlainWords& words, std::string_view value, const PlainFile& file);

}  // namespace vellmora
