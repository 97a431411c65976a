// Text without regard to case, of every script.
#pragma once

#include <string>
#include <string_view>

namespace platform {

// The text with the case of each letter folded, so that two texts that differ in case alone become the same
// one. Bytes that are no UTF-8 stay as they are. Does not depend on the process's locale.
std::string foldCase(std::string_view utf8);

}  // namespace platform
