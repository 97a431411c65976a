#include "platform/machine/caseFold.h"

#include <locale.h>
#include <wctype.h>

#include <algorithm>
#include <cstdint>

namespace platform {

namespace {

// A locale of the C library that knows all letters, wherever this machine is.
locale_t everyLetter() {
    static const locale_t locale = ::newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    return locale;
}

char32_t folded(char32_t letter) {
    if (letter < 0x80)
        return static_cast<unsigned char>(foldAscii(static_cast<char>(letter)));
    const locale_t locale = everyLetter();
    if (!locale)
        return letter;
    // By way of the capital, which letters of two small forms share.
    return static_cast<char32_t>(::towlower_l(::towupper_l(static_cast<wint_t>(letter), locale), locale));
}

// Bytes of the character that begins with this one; 1 for a byte that begins none.
std::size_t lengthOf(unsigned char first) {
    return first >= 0xF0 && first < 0xF8 ? 4 : first >= 0xE0 ? 3 : first >= 0xC2 ? 2 : 1;
}

void append(std::string& text, char32_t c) {
    const auto put = [&](std::uint32_t byte) { text += static_cast<char>(byte); };
    if (c < 0x80) {
        put(c);
        return;
    }
    const int following = c < 0x800 ? 1 : c < 0x10000 ? 2 : 3;
    put((following == 1 ? 0xC0u : following == 2 ? 0xE0u : 0xF0u) | c >> 6 * following);
    for (int shift = 6 * (following - 1); shift >= 0; shift -= 6)
        put(0x80u | (c >> shift & 0x3F));
}

}  // namespace

std::string foldCase(std::string_view utf8) {
    std::string result;
    result.reserve(utf8.size());
    for (std::size_t at = 0; at < utf8.size();) {
        const auto first = static_cast<unsigned char>(utf8[at]);
        const std::size_t length = lengthOf(first);
        char32_t letter = length == 1 ? first : first & (0xFFu >> (length + 1));
        bool whole = at + length <= utf8.size() && (length > 1 || first < 0x80) && first < 0xF8;
        for (std::size_t i = 1; whole && i < length; ++i) {
            const auto next = static_cast<unsigned char>(utf8[at + i]);
            whole = (next & 0xC0) == 0x80;
            letter = letter << 6 | (next & 0x3F);
        }
        if (whole)
            append(result, folded(letter));
        else
            result += utf8[at];
        at += whole ? length : 1;
    }
    return result;
}

std::string foldAscii(std::string_view text) {
    std::string result(text);
    for (char& c : result)
        c = foldAscii(c);
    return result;
}

bool equalsIgnoringAsciiCase(std::string_view left, std::string_view right) noexcept {
    return std::ranges::equal(left, right, [](char a, char b) { return foldAscii(a) == foldAscii(b); });
}

}  // namespace platform
