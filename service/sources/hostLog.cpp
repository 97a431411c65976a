#include "service/sources/hostLog.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <optional>
#include <string_view>
#include <utility>

#include "platform/failure.h"
#include "platform/files/descriptor.h"

namespace service {

namespace {

// So many bytes before a place tell whether they are those of before.
constexpr std::uint64_t fingerprinted = 512;

// A batch is not longer than about this, however long its records are.
constexpr std::uint64_t mostBytes = 8 << 20;

struct Place {
    std::uint64_t offset = 0;  // bytes; 0 where there was no log
    std::uint64_t fingerprint = 0;
};

std::string textOf(const Place& place) {
    return std::to_string(place.offset) + ':' + std::to_string(place.fingerprint);
}

// Nothing for a text that is no position.
std::optional<Place> placeOf(std::string_view text) {
    Place place;
    const char* const end = text.data() + text.size();
    const auto offset = std::from_chars(text.data(), end, place.offset);
    if (offset.ec != std::errc{} || offset.ptr == end || *offset.ptr != ':')
        return std::nullopt;
    const auto fingerprint = std::from_chars(offset.ptr + 1, end, place.fingerprint);
    if (fingerprint.ec != std::errc{} || fingerprint.ptr != end)
        return std::nullopt;
    return place;
}

struct LogFile {
    platform::Descriptor file;  // none without a log
    std::uint64_t size = 0;
};

LogFile openLog(const std::string& log) {
    const std::string path = platform::eventLogFile(log).string();
    LogFile opened;
    opened.file = platform::Descriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status {};
    if (!opened.file && (errno == ENOENT || errno == ENOTDIR))
        return opened;
    if (!opened.file || ::fstat(opened.file.get(), &status) != 0)
        throw platform::failureFromErrno(errno, path);
    if (!S_ISREG(status.st_mode))
        throw platform::makeFailure(platform::pathFileAccessError, path + " is no ordinary file");
    opened.size = static_cast<std::uint64_t>(status.st_size);
    return opened;
}

std::string bytesOf(const LogFile& log, std::uint64_t begin, std::uint64_t end) {
    std::string bytes(static_cast<std::size_t>(end - begin), '\0');
    std::size_t got = 0;
    while (got < bytes.size()) {
        const ssize_t count =
            ::pread(log.file.get(), bytes.data() + got, bytes.size() - got, static_cast<off_t>(begin + got));
        if (count == 0)
            break;  // the log was cut meanwhile
        if (count < 0 && errno != EINTR)
            throw platform::failureFromErrno(errno, "event log");
        got += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
    bytes.resize(got);
    return bytes;
}

// FNV-1a: no secret depends on it, and it is the same on every machine.
std::uint64_t hashOf(std::string_view bytes) {
    std::uint64_t hash = 14695981039346656037u;
    for (const char byte : bytes)
        hash = (hash ^ static_cast<unsigned char>(byte)) * 1099511628211u;
    return hash;
}

std::uint64_t fingerprintAt(const LogFile& log, std::uint64_t offset) {
    return hashOf(bytesOf(log, offset - std::min(offset, fingerprinted), offset));
}

Place placeIn(const LogFile& log, std::uint64_t offset) {
    return {offset, fingerprintAt(log, offset)};
}

// Where reading goes on; says in `notices` when that is not where it ended.
std::uint64_t beginningIn(const LogFile& log, const std::string& name, const std::string& position,
                          std::vector<std::string>& notices) {
    const auto toldAnew = [&](const char* why) {
        notices.push_back(name + " log: " + why + "; it is read from its beginning.");
        return std::uint64_t{0};
    };
    const auto place = placeOf(position);
    if (!place)
        return toldAnew("its position cannot be read");
    if (place->offset > log.size)
        return toldAnew("it is shorter than before");
    if (place->offset > 0 && place->fingerprint != fingerprintAt(log, place->offset))
        return toldAnew("it was replaced, or cleared and filled again");
    return place->offset;
}

// The place behind the last whole line; a writer that has not finished its line will.
std::uint64_t endOfWholeLines(const LogFile& log, std::size_t chunk) {
    std::uint64_t end = log.size;
    while (end > 0) {
        const std::uint64_t begin = end - std::min<std::uint64_t>(end, chunk);
        const std::size_t lineEnd = bytesOf(log, begin, end).rfind('\n');
        if (lineEnd != std::string::npos)
            return begin + lineEnd + 1;
        end = begin;
    }
    return 0;
}

}  // namespace

HostLog::HostLog(std::string log, std::size_t chunk) : log_(std::move(log)), chunk_(chunk) {}

std::string HostLog::end() {
    const LogFile log = openLog(log_);
    return textOf(log.file ? placeIn(log, endOfWholeLines(log, chunk_)) : Place{});
}

Batch HostLog::read(const std::string& position, std::size_t most) {
    Batch batch;
    const LogFile log = openLog(log_);
    if (!log.file) {
        const auto place = placeOf(position);
        if (place && place->offset > 0)
            batch.notices.push_back(log_ + " log: it is gone; a new one is read from its beginning.");
        batch.position = textOf({});
        return batch;
    }
    std::uint64_t offset = beginningIn(log, log_, position, batch.notices);
    const std::uint64_t begin = offset;
    std::size_t lines = 0;
    std::size_t wanted = chunk_;
    bool isFull = false;
    while (offset < log.size && !isFull) {
        const std::string bytes =
            bytesOf(log, offset, offset + std::min<std::uint64_t>(log.size - offset, wanted));
        std::string_view rest = bytes;
        for (std::size_t end = rest.find('\n'); end != std::string_view::npos && lines < most;
             end = rest.find('\n')) {
            ++lines;
            if (auto record = platform::parseEventLine(log_, rest.substr(0, end)))
                batch.records.push_back(std::move(*record));
            else
                batch.notices.push_back(log_ + " log: the line at byte " + std::to_string(offset) +
                                        " is no record and is skipped.");
            offset += end + 1;
            rest.remove_prefix(end + 1);
        }
        if (rest.size() < bytes.size())
            wanted = chunk_;
        else if (bytes.size() < wanted)
            break;  // the last line is not finished yet, or the log was cut meanwhile
        else
            wanted *= 2;
        isFull = lines >= most || offset - begin >= mostBytes;
    }
    batch.isWhole = !isFull;
    batch.position = textOf(placeIn(log, offset));
    return batch;
}

}  // namespace service
