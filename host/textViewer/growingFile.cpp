#include "host/textViewer/growingFile.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include "platform/failure.h"
#include "platform/files/descriptor.h"

namespace viewer {

namespace {
constexpr std::uint64_t mostAtOnce = 4ull << 20;
}

GrowingFile::GrowingFile(std::filesystem::path path, std::uint64_t mostBytes)
    : path_(std::move(path)), mostBytes_(mostBytes) {}

GrowingFile::News GrowingFile::look() {
    const platform::Descriptor file(::open(path_.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status {};
    if (!file || ::fstat(file.get(), &status) != 0)
        throw platform::failureFromErrno(errno, path_.string());
    if (!S_ISREG(status.st_mode))
        throw platform::makeFailure(platform::pathFileAccessError, path_.string());
    News news;
    const auto size = static_cast<std::uint64_t>(status.st_size);
    if (status.st_ino != inode_ || status.st_dev != device_ || size < read_) {
        news.fromTheStart = true;
        device_ = status.st_dev;
        inode_ = status.st_ino;
        leftOut_ = size - std::min(size, mostBytes_);
        read_ = leftOut_;
    }
    news.bytes.resize(static_cast<std::size_t>(std::min(size - read_, mostAtOnce)));
    const ssize_t count =
        ::pread(file.get(), news.bytes.data(), news.bytes.size(), static_cast<off_t>(read_));
    if (count < 0)
        throw platform::failureFromErrno(errno, path_.string());
    news.bytes.resize(static_cast<std::size_t>(count));
    read_ += static_cast<std::uint64_t>(count);
    return news;
}

}  // namespace viewer
