#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace vellmora {

/// A text that takes the place of another one of the same length.
struct Mend {
    size_t position = 0;
    std::string text;
};

/// What in the text of an object libqpdf does not take, so that it gives the whole object up. `position`
/// is that of the object's value in `text`; what follows the value is left alone.
///
/// A whole number beyond 64 bits becomes the greatest that every reader takes, a reference to such an object
/// one to none, containers within very many others become null, words that mean nothing become null or 0, and
/// what does not belong into a hexadecimal string is blanked. The length of a stream is blanked where it is a
/// reference: it may lead to the stream itself, and is found without it.
std::vector<Mend> mendsOfObject(std::string_view text, size_t position);

/// A mend takes precedence over those before it.
void applyMends(const std::vector<Mend>& mends, char* text);

}  // namespace vellmora
