#include "platform/machine/eventLog.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <filesystem>
#include <optional>

#include "platform/failure.h"
#include "platform/files/descriptor.h"
#include "platform/files/fileLock.h"
#include "platform/files/files.h"
#include "platform/files/ownedFile.h"
#include "platform/machine/clock.h"
#include "platform/machine/host.h"

namespace platform {

namespace {

constexpr std::size_t fieldCount = 8;
constexpr std::uint64_t largestLog = 1ull << 30;

constexpr std::string_view specialCharacters = "\\\t\n\r";
constexpr std::string_view escapeLetters = "\\tnr";

std::string escaped(std::string_view text) {
    std::string result;
    for (const char character : text) {
        const std::size_t index = specialCharacters.find(character);
        if (index == std::string_view::npos)
            result.push_back(character);
        else
            result.append(1, '\\').append(1, escapeLetters[index]);
    }
    return result;
}

std::optional<std::string> unescaped(std::string_view text) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\') {
            result.push_back(text[i]);
            continue;
        }
        const std::size_t index = ++i < text.size() ? escapeLetters.find(text[i]) : std::string_view::npos;
        if (index == std::string_view::npos)
            return std::nullopt;
        result.push_back(specialCharacters[index]);
    }
    return result;
}

std::string formatLine(const EventRecord& record) {
    const std::array<std::string, fieldCount> fields{record.time,
                                                     record.source,
                                                     std::to_string(record.id),
                                                     std::to_string(record.type),
                                                     std::to_string(record.category),
                                                     record.user,
                                                     record.computer,
                                                     record.description};
    std::string line;
    for (const std::string& field : fields)
        line.append(line.empty() ? "" : "\t").append(escaped(field));
    return line + '\n';
}

template <class Number>
bool parseNumber(const std::string& text, Number& number) {
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    return error == std::errc{} && stop == end;
}

void makeLogsFolder() {
    if (files::folderExists(host::eventLogsFolder())) {
        files::requireOwnFolder(host::eventLogsFolder());
        return;
    }
    try {
        files::createFolder(host::eventLogsFolder());
    } catch (const Failure& failure) {
        // Another writer may have been faster.
        if (failure.number() != fileAlreadyExists)
            throw;
    }
}

// What must precede a new record: the end of a line that a writer that died has left unfinished.
std::string closingOfTornLine(int file, off_t size) {
    char last = '\n';
    if (size == 0 || ::pread(file, &last, 1, size - 1) != 1 || last == '\n')
        return {};
    // More fields than a record has: a cut description must not pass for a whole one.
    return std::string(fieldCount, '\t') + '\n';
}

}  // namespace

std::filesystem::path eventLogFile(std::string_view log) {
    if (log != "Application" && log != "System")
        throw makeFailure(invalidProcedureCall);
    return host::eventLogsFolder() / (std::string(log) + ".log");
}

std::optional<EventRecord> parseEventLine(std::string_view log, std::string_view line) {
    std::array<std::string, fieldCount> fields;
    for (std::size_t i = 0; i < fieldCount; ++i) {
        const std::size_t tab = line.find('\t');
        const bool last = i + 1 == fieldCount;
        auto field = unescaped(line.substr(0, tab));
        if (!field || last != (tab == std::string_view::npos))
            return std::nullopt;
        fields[i] = std::move(*field);
        line.remove_prefix(last ? line.size() : tab + 1);
    }
    EventRecord record;
    if (!parseNumber(fields[2], record.id) || !parseNumber(fields[3], record.type) ||
        !parseNumber(fields[4], record.category))
        return std::nullopt;
    record.log = log;
    record.time = std::move(fields[0]);
    record.source = std::move(fields[1]);
    record.user = std::move(fields[5]);
    record.computer = std::move(fields[6]);
    record.description = std::move(fields[7]);
    return record;
}

void appendEvent(EventRecord record, std::chrono::milliseconds patience) {
    const std::filesystem::path path = eventLogFile(record.log);
    if (record.time.empty())
        record.time = storedForm(localTime(clock().now()));
    if (record.computer.empty())
        record.computer = computerName();
    makeLogsFolder();
    const Descriptor file = files::openOwnedFile(path, O_RDWR | O_APPEND);
    if (!file)
        throw failureFromErrno(errno, path.string());
    if (!files::lockWithin(file, path.string(), patience))
        throw makeFailure(permissionDenied, path.string() + " is locked");
    struct stat status {};
    if (::fstat(file.get(), &status) != 0)
        throw failureFromErrno(errno, path.string());

    const std::string text = closingOfTornLine(file.get(), status.st_size) + formatLine(record);
    const ssize_t written = ::write(file.get(), text.data(), text.size());
    if (written == static_cast<ssize_t>(text.size()))
        return;
    // Half a record is worse than none. A full disk shows itself by a short write.
    const int error = written < 0 ? errno : ENOSPC;
    if (written > 0 && ::ftruncate(file.get(), status.st_size) != 0)
        throw failureFromErrno(errno, path.string());
    throw failureFromErrno(error, path.string());
}

std::vector<EventRecord> readEvents(std::string_view log) {
    std::string text;
    try {
        text = files::readFile(eventLogFile(log), largestLog);
    } catch (const Failure& failure) {
        if (failure.number() == fileNotFound || failure.number() == pathNotFound)
            return {};
        throw;
    }
    std::vector<EventRecord> records;
    std::string_view rest = text;
    for (std::size_t end = rest.find('\n'); end != std::string_view::npos; end = rest.find('\n')) {
        if (auto record = parseEventLine(log, rest.substr(0, end)))
            records.push_back(std::move(*record));
        rest.remove_prefix(end + 1);
    }
    return records;
}

}  // namespace platform
