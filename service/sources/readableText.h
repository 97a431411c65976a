// Bytes from anywhere as text.
#pragma once

#include <string>
#include <string_view>

namespace service {

// The bytes as UTF-8 without zeros: what is no text becomes U+FFFD, byte for byte. Text stays as it is.
std::string readableText(std::string_view bytes);

}  // namespace service
