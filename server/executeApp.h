// Running a command for its output.
#pragma once

#include <string>

namespace mdlUtility {

// Runs the command line without a window and returns what it wrote to its standard output and error, as
// bytes. Returns when the command has closed both, which need not be its end. Empty when it cannot be
// started.
std::string ExecuteApp(const std::string& commandLine);

}  // namespace mdlUtility
