// One notification on its way to one address.
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <string>

namespace service {

enum class Priority { low, normal, urgent };

struct Message {
    std::string key;      // names the message for good: a repeated attempt has the same one
    std::string address;  // in the form of the device: a mail address, a number, a host
    std::string subject;
    std::string body;  // UTF-8; lines end with LF, CR or both
    Priority priority = Priority::normal;
    std::chrono::system_clock::time_point created;
    std::filesystem::path voiceFile;  // goes along with a mail; empty for none
    // Of the record that it tells of.
    std::string eventSource;
    std::uint32_t eventId = 0;
    std::uint16_t eventType = 4;  // 1 error, 2 warning, 4 information
    std::string computer;
};

}  // namespace service
