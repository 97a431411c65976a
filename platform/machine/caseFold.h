// Text without regard to case: of every script, or of the letters A to Z alone, as the
// registry, services and databases compare names.
#pragma once

#include <string>
#include <string_view>

namespace platform {

// The text with the case of each letter folded, so that two texts that differ in case alone become the same
// one. Bytes that are no UTF-8 stay as they are. Does not depend on the process's locale.
std::string foldCase(std::string_view utf8);

// A to Z as a to z; all else stays as it is.
constexpr char foldAscii(char c) noexcept {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}
std::string foldAscii(std::string_view text);
bool equalsIgnoringAsciiCase(std::string_view left, std::string_view right) noexcept;

}  // namespace platform
