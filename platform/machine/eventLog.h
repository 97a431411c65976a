// The host's event logs "Application" and "System": append-only files with several writers.
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

struct EventRecord {
    std::string log;   // "Application" or "System"
    std::string time;  // stored form, local time
    std::string source;
    std::uint32_t id = 0;
    std::uint16_t type = 4;  // 1 error, 2 warning, 4 information
    std::uint16_t category = 0;
    std::string user;
    std::string computer;
    std::string description;

    bool operator==(const EventRecord&) const = default;
};

// Appends one record in one write under a lock; an empty time becomes the present, an empty computer
// this machine. Raises the file's failure number, 70 when somebody else holds the log for longer than
// `patience`, or 5 for a log of another name.
void appendEvent(EventRecord record, std::chrono::milliseconds patience = std::chrono::seconds(5));
// A record from its line in a log, without the line's end; nothing when the line is no record.
std::optional<EventRecord> parseEventLine(std::string_view log, std::string_view line);
// The file of a log. Raises 5 for a log of another name.
std::filesystem::path eventLogFile(std::string_view log);
// All whole records of a log, oldest first; a torn last line is left out. Empty when there is no log.
std::vector<EventRecord> readEvents(std::string_view log);

}  // namespace platform
