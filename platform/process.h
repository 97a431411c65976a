// Starting programs.
#pragma once

#include <string>

namespace platform {

enum class ProgramWindow { normal, maximized };

// Starts a command line of its own session, without waiting; words are split at blanks, double quotes hold
// words together. A program name without a folder is looked up beside the running program, then in PATH.
// `window` is a wish that a program of the
// host finds in its environment. Raises 53 when there is no such program, 5 for an empty command line.
void startDetached(const std::string& commandLine, ProgramWindow window = ProgramWindow::normal);
// True when this program was started with the wish for a maximized window.
bool startedMaximized();

}  // namespace platform
