#include "platform/machine/eventLogPages.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include "platform/failure.h"
#include "platform/files/descriptor.h"

namespace platform {

namespace {

// The log's file; none when it is missing.
Descriptor openLog(const std::string& log, std::uint64_t& size) {
    const std::filesystem::path path = eventLogFile(log);
    Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status {};
    if (!file && (errno == ENOENT || errno == ENOTDIR))
        return file;
    if (!file || ::fstat(file.get(), &status) != 0)
        throw failureFromErrno(errno, path.string());
    if (!S_ISREG(status.st_mode))
        throw makeFailure(pathFileAccessError, path.string() + " is no ordinary file");
    size = static_cast<std::uint64_t>(status.st_size);
    return file;
}

std::string bytesOf(const Descriptor& file, std::uint64_t begin, std::uint64_t end) {
    std::string bytes(static_cast<std::size_t>(end - begin), '\0');
    std::size_t got = 0;
    while (got < bytes.size()) {
        const ssize_t count =
            ::pread(file.get(), bytes.data() + got, bytes.size() - got, static_cast<off_t>(begin + got));
        if (count == 0)
            break;  // the log was cut meanwhile
        if (count < 0 && errno != EINTR)
            throw failureFromErrno(errno, "event log");
        got += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
    bytes.resize(got);
    return bytes;
}

}  // namespace

EventLogPages::EventLogPages(std::string log, std::uint64_t pageSize)
    : log_(std::move(log)), pageSize_(pageSize) {
    openLog(log_, begin_);
}

std::vector<PlacedEvent> EventLogPages::earlier() {
    std::uint64_t size = 0;
    const Descriptor file = openLog(log_, size);
    std::uint64_t end = std::min(begin_, size);
    std::vector<PlacedEvent> page;
    if (!file || end == 0) {
        begin_ = 0;
        return page;
    }
    // A page begins where a line does: with a line that is longer than the page, the page grows.
    std::string bytes;
    std::uint64_t begin = end;
    std::size_t firstLine = std::string::npos;
    for (std::uint64_t length = pageSize_; begin > 0 && firstLine == std::string::npos; length *= 2) {
        begin = end - std::min(end, length);
        bytes = bytesOf(file, begin, end);
        if (begin == 0)
            firstLine = 0;
        else if (const std::size_t lineEnd = bytes.find('\n'); lineEnd < bytes.size() - 1)
            firstLine = lineEnd + 1;
    }
    begin_ = begin + firstLine;
    std::string_view rest = std::string_view(bytes).substr(firstLine);
    std::uint64_t place = begin_;
    for (std::size_t lineEnd = rest.find('\n'); lineEnd != std::string_view::npos;
         lineEnd = rest.find('\n')) {
        if (auto record = parseEventLine(log_, rest.substr(0, lineEnd)))
            page.push_back({place, std::move(*record)});
        place += lineEnd + 1;
        rest.remove_prefix(lineEnd + 1);
    }
    std::ranges::reverse(page);
    return page;
}

}  // namespace platform
