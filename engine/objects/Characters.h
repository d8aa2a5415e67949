#pragma once

#include <string_view>

namespace vellmora {

/// For a few characters: quicker than a search, which calls the C library.
constexpr bool isOneOf(std::string_view characters, char character) {
    bool isFound = false;
    for (const char other : characters)
        isFound |= character == other;
    return isFound;
}

}  // namespace vellmora
