// Starting programs. A started program belongs to nobody here: it has a session of its own, and no ended
// process waits for this one. It finds the same host (QLN_HOST).
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace platform {

struct StartOptions {
    int output = -1;                             // receives standard output and error; -1 for nowhere
    std::vector<std::string> environment;        // "NAME=value", in place of this program's values
    std::function<void(long processId)> before;  // runs when the process is there, before the program does
};

// Starts a command line, without waiting; words are split at blanks, double quotes hold words together. A
// program name without a folder is looked up beside the running program, then in PATH.
// Raises 53 when there is no such program, 70 when the file may not be run, 5 for an empty command line, and
// what `before` raises; the program does not run then.
void startProcess(const std::string& commandLine, const StartOptions& options);

enum class ProgramWindow { normal, maximized };

// The same for a program and its arguments, each as it is: nothing in an argument is read as a quote or a
// blank.
void startProcess(const std::string& program, std::vector<std::string> arguments,
                  const StartOptions& options);

// The same for a program with a window. `window` is a wish that a program of the host finds in its
// environment.
void startDetached(const std::string& commandLine, ProgramWindow window = ProgramWindow::normal);
void startDetached(const std::string& program, std::vector<std::string> arguments);
// The file of the program that a command line starts; empty when there is none.
std::string programOf(const std::string& commandLine);
// True when this program was started with the wish for a maximized window.
bool startedMaximized();

}  // namespace platform
