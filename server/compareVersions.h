// Versions as text.
#pragma once

#include <array>
#include <string_view>

namespace mdlUtility {

// 1 when `a` is the newer version, -1 when `b` is, 0 when they are the same. "1.3.0.13" and "1.3(0.13)" are.
int compareVersions(std::string_view a, std::string_view b);
// The up to four numbers of a version; missing ones, and texts that begin with no digit, are 0.
std::array<long, 4> parseVersion(std::string_view version);

}  // namespace mdlUtility
