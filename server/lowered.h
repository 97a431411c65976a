// Text without regard to case.
#pragma once

#include <string>
#include <string_view>

namespace mdlUtility {

// ASCII letters folded to lower case; every other byte stays.
inline std::string lowered(std::string_view text) {
    std::string result(text);
    for (char& c : result)
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    return result;
}

}  // namespace mdlUtility
