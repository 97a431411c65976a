// The debugger channel: standard error.
#pragma once

#include <string_view>

namespace platform {

// Writes the text and a line break. Never fails.
void outputDebugString(std::string_view text) noexcept;

}  // namespace platform
