// A command's output through a pipe. The calls give the system's last-error number, 0 when they succeed.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "platform/files/descriptor.h"

namespace platform {

struct Pipe {
    Descriptor readEnd;
    Descriptor writeEnd;
};
std::uint32_t createPipe(Pipe& pipe);

// Starts the command line, with no window, its standard output and error going to the pipe's write end.
std::uint32_t createProcess(const std::string& commandLine, const Descriptor& writeEnd);

// Reads at most as much as the buffer holds; waits for something to read. 0 bytes and no error mean that
// nobody holds the write end any more.
std::uint32_t readFile(const Descriptor& readEnd, std::span<char> buffer, std::size_t& bytesRead);

}  // namespace platform
