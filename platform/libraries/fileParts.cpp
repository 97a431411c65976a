#include "platform/libraries/fileParts.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>

namespace platform {

FileParts::FileParts(const std::filesystem::path& file)
    : file_(::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {
    struct stat status {};
    if (file_ && ::fstat(file_.get(), &status) == 0 && S_ISREG(status.st_mode))
        size_ = static_cast<std::uint64_t>(status.st_size);
}

std::optional<std::vector<std::uint8_t>> FileParts::read(std::uint64_t offset, std::uint64_t size) const {
    if (offset > size_ || size_ - offset < size)
        return std::nullopt;
    if (!file_) {
        const Bytes part = content_.subspan(static_cast<std::size_t>(offset), static_cast<std::size_t>(size));
        return std::vector<std::uint8_t>(part.begin(), part.end());
    }
    std::vector<std::uint8_t> part(static_cast<std::size_t>(size));
    for (std::size_t done = 0; done < part.size();) {
        const ssize_t count =
            ::pread(file_.get(), part.data() + done, part.size() - done, static_cast<off_t>(offset + done));
        if (count > 0)
            done += static_cast<std::size_t>(count);
        else if (count == 0 || errno != EINTR)
            return std::nullopt;  // cut off since its size was asked, or unreadable
    }
    return part;
}

}  // namespace platform
