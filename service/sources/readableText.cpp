#include "service/sources/readableText.h"

#include <algorithm>

#include "platform/files/textStream.h"

namespace service {

namespace {

// Bytes of the character that begins here; 0 where none does.
std::size_t characterAt(std::string_view bytes) {
    const auto first = static_cast<unsigned char>(bytes.front());
    const std::size_t length = first < 0x80 ? 1 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
    return first != 0 && length <= bytes.size() && platform::isValidUtf8(bytes.substr(0, length)) ? length
                                                                                                  : 0;
}

}  // namespace

std::string readableText(std::string_view bytes) {
    constexpr std::string_view replacement = "\xEF\xBF\xBD";
    if (platform::isValidUtf8(bytes) && bytes.find('\0') == std::string_view::npos)
        return std::string(bytes);
    std::string text;
    while (!bytes.empty()) {
        const std::size_t length = characterAt(bytes);
        text.append(length == 0 ? replacement : bytes.substr(0, length));
        bytes.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return text;
}

}  // namespace service
