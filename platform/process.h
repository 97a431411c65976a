// Starting programs.
#pragma once

#include <string>

namespace platform {

// Starts a command line of its own session, without waiting; words are split at blanks, double quotes hold
// words together. A program name without a folder is looked up beside the running program, then in PATH.
// Raises 53 when there is no such program, 5 for an empty command line.
void startDetached(const std::string& commandLine);

}  // namespace platform
