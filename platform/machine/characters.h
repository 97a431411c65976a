// Characters of texts in UTF-8.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace platform {

// Number of characters: of all bytes but those that continue one.
inline std::size_t countCharacters(std::string_view utf8) {
    return static_cast<std::size_t>(
        std::ranges::count_if(utf8, [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
}

}  // namespace platform
