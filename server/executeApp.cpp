#include "server/executeApp.h"

#include <array>

#include "core/classLog.h"
#include "core/procedure.h"
#include "platform/machine/pipe.h"

namespace mdlUtility {

std::string ExecuteApp(const std::string& commandLine) {
    return core::procedure("mdlUtility", "ExecuteApp", std::string(),
                           [&](core::Frame& frame, std::string& output) {
        const auto failed = [&](const char* call, std::uint32_t error) {
            if (error != 0)
                core::gLog().log(std::string(call) + " failed. Error: " + std::to_string(error),
                                 core::logError, frame.tag());
            return error != 0;
        };
        platform::Pipe pipe;
        if (failed("CreatePipe", platform::createPipe(pipe)) ||
            failed("CreateProcess", platform::createProcess(commandLine, pipe.writeEnd)))
            return;
        pipe.writeEnd = platform::Descriptor();
        std::array<char, 256> piece{};
        std::size_t count = 0;
        while (platform::readFile(pipe.readEnd, piece, count) == 0 && count > 0)
            output.append(piece.data(), count);
    });
}

}  // namespace mdlUtility
