#include "platform/machine/debugger.h"

#include <cstdio>

namespace platform {

void outputDebugString(std::string_view text) noexcept {
    std::fwrite(text.data(), 1, text.size(), stderr);
    std::fputc('\n', stderr);
}

}  // namespace platform
