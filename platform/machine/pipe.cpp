#include "platform/machine/pipe.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "platform/machine/process.h"
#include "platform/systemError.h"

namespace platform {

std::uint32_t createPipe(Pipe& pipe) {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0)
        return systemError(failureFromErrno(errno, "pipe"));
    pipe.readEnd = Descriptor(ends[0]);
    pipe.writeEnd = Descriptor(ends[1]);
    return noError;
}

std::uint32_t createProcess(const std::string& commandLine, const Descriptor& writeEnd) {
    try {
        startProcess(commandLine, {writeEnd.get(), {}, {}});
    } catch (const Failure& failure) {
        return systemError(failure);
    }
    return noError;
}

std::uint32_t readFile(const Descriptor& readEnd, std::span<char> buffer, std::size_t& bytesRead) {
    for (;;) {
        const ssize_t count = ::read(readEnd.get(), buffer.data(), buffer.size());
        bytesRead = count > 0 ? static_cast<std::size_t>(count) : 0;
        if (count >= 0)
            return noError;
        if (errno != EINTR)
            return systemError(failureFromErrno(errno, "pipe"));
    }
}

}  // namespace platform
