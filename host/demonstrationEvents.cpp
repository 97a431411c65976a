// The event logs of the demonstration host.

#include <array>
#include <chrono>
#include <cstdint>

#include "host/demonstration.h"
#include "platform/machine/clock.h"
#include "platform/machine/eventLog.h"

namespace host {

namespace {

enum EventType : std::uint16_t { error = 1, warning = 2, information = 4 };

struct Sample {
    const char* log;
    const char* source;
    std::uint32_t id;
    EventType type;
    const char* description;
};

constexpr std::array<Sample, 10> samples{{
    {"System", "ServiceManager", 7036, information, "The Corvane hub service entered the running state."},
    {"Application", "MeridaneCorvane_License", 1003, information, "Licences in use: 148 of 250."},
    {"Application", "MeridaneCorvane_SwitchLink", 2210, warning,
     "Link 2 to the telephone switch lost its clock for 3 seconds."},
    {"System", "Ntp", 29, warning, "No time server answered. The clock runs free."},
    {"Application", "MeridaneCorvane_MessageStore", 4711, error,
     "The message store cannot be reached.\r\nMessages are kept on this server until it answers."},
    {"Application", "MeridaneCorvane_Telephony", 120, error, "Port 17 does not answer and was disabled."},
    {"System", "Disk", 51, warning, "An error was detected on device D: during a paging operation."},
    {"Application", "MeridaneCorvane_DirSync", 310, information,
     "Synchronisation finished: 3 changed, 0 failed."},
    {"Application", "BackupAgent", 57, error, "The nightly backup stopped: the tape is full."},
    {"Application", "MeridaneCorvane_Telephony", 121, information, "Port 17 is enabled again."},
}};

}  // namespace

void fillDemonstrationEvents() {
    constexpr auto between = std::chrono::minutes(97);
    auto moment = platform::clock().now() - between * static_cast<int>(samples.size());
    for (const Sample& sample : samples) {
        platform::EventRecord record;
        record.log = sample.log;
        record.time = platform::storedForm(platform::localTime(moment));
        record.source = sample.source;
        record.id = sample.id;
        record.type = sample.type;
        record.user = demonstrationAccount;
        record.computer = "CORVANE01";
        record.description = sample.description;
        platform::appendEvent(record);
        moment += between;
    }
}

}  // namespace host
