// Which Corvane server this machine is.
#pragma once

#include <string>

#include "core/state.h"

namespace mdlCorvane {

// Reads the version from the registry; a missing value reads as 0. It has no failure of its own.
core::CorvaneVersion getVersion();
// True when the running version is not less than the one given. Required: versions compare as texts of three
// digits per number, so a number of four digits sorts by its first one.
bool isVersionAtLeast(short major, short minor, short build, short revision);
// "003.001.001.000" for 3.1(1.0).
std::string formatVersionKey(const core::CorvaneVersion& version);

}  // namespace mdlCorvane
