#include "platform/files/fileLock.h"

#include <fcntl.h>
#include <sys/file.h>

#include <cerrno>
#include <thread>
#include <utility>

#include "platform/failure.h"
#include "platform/files/ownedFile.h"

namespace platform::files {

bool lockWithin(const Descriptor& file, const std::string& path, std::chrono::milliseconds patience) {
    const auto end = std::chrono::steady_clock::now() + patience;
    while (::flock(file.get(), LOCK_EX | LOCK_NB) != 0) {
        if (errno == EINTR)
            continue;
        if (errno != EWOULDBLOCK)
            throw failureFromErrno(errno, path);
        if (std::chrono::steady_clock::now() >= end)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return true;
}

Descriptor lockAlone(const std::filesystem::path& path) {
    Descriptor lock = openOwnedFile(path, O_RDWR);
    if (!lock)
        throw failureFromErrno(errno, path.string());
    return lockWithin(lock, path.string(), std::chrono::milliseconds(0)) ? std::move(lock) : Descriptor();
}

}  // namespace platform::files
