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
    int minutesAgo;
    const char* log;
    const char* source;
    std::uint32_t id;
    EventType type;
    const char* description;
};

// What the days before have left. The history of a host in use tells of some of it. Of the call manager and
// of the quota only the legacy notifier's database knows.
constexpr std::array<Sample, 11> earlier{{
    {8700, "System", "ServiceManager", 7036, information, "The Quillon Service entered the running state."},
    {8400, "Application", "MeridaneCorvane_Telephony", 120, error,
     "Port 4 does not answer and was disabled."},
    {8312, "Application", "MeridaneCorvane_Telephony", 121, information, "Port 4 is enabled again."},
    {6900, "Application", "MeridaneCorvane_CallMgr", 412, warning,
     "14 calls wait for an operator, and 10 are allowed."},
    {5580, "Application", "MeridaneCorvane_MessageStore", 4711, error,
     "The message store cannot be reached.\r\nMessages are kept on this server until it answers."},
    {5571, "Application", "MeridaneCorvane_MessageStore", 4712, information,
     "The message store answers again. 23 messages were delivered to it."},
    {4210, "Application", "DiskQuota", 36, warning, "The share of recordings has used 90 % of its quota."},
    {3900, "Application", "MeridaneCorvane_AudioText", 12, error,
     "The announcement \"Closed on public holidays\" has no recording."},
    {2760, "Application", "MeridaneCorvane_MailRouter", 88, error,
     "The outgoing queue has not moved for 20 minutes."},
    {1500, "Application", "MeridaneCorvane_Telephony", 120, error,
     "Port 17 does not answer and was disabled."},
    {1494, "Application", "MeridaneCorvane_Telephony", 121, information, "Port 17 is enabled again."},
}};

// The last day.
constexpr std::array<Sample, 10> samples{{
    {970, "System", "ServiceManager", 7036, information,
     "The Corvane hub service entered the running state."},
    {873, "Application", "MeridaneCorvane_License", 1003, information, "Licences in use: 148 of 250."},
    {776, "Application", "MeridaneCorvane_SwitchLink", 2210, warning,
     "Link 2 to the telephone switch lost its clock for 3 seconds."},
    {679, "System", "Ntp", 29, warning, "No time server answered. The clock runs free."},
    {582, "Application", "MeridaneCorvane_MessageStore", 4711, error,
     "The message store cannot be reached.\r\nMessages are kept on this server until it answers."},
    {485, "Application", "MeridaneCorvane_Telephony", 120, error,
     "Port 17 does not answer and was disabled."},
    {388, "System", "Disk", 51, warning, "An error was detected on device D: during a paging operation."},
    {291, "Application", "MeridaneCorvane_DirSync", 310, information,
     "Synchronisation finished: 3 changed, 0 failed."},
    {194, "Application", "BackupAgent", 57, error, "The nightly backup stopped: the tape is full."},
    {97, "Application", "MeridaneCorvane_Telephony", 121, information, "Port 17 is enabled again."},
}};

// One that has a monitored event of its own, and one that the event for all errors of the server stands for.
constexpr std::array<Sample, 2> news{{
    {0, "Application", "MeridaneCorvane_Telephony", 120, error, "Port 8 does not answer and was disabled."},
    {0, "Application", "MeridaneCorvane_MailRouter", 88, error,
     "The outgoing queue has not moved for 20 minutes."},
}};

template <std::size_t count>
void write(const std::array<Sample, count>& records) {
    const auto now = platform::clock().now();
    for (const Sample& sample : records) {
        platform::EventRecord record;
        record.log = sample.log;
        record.time =
            platform::storedForm(platform::localTime(now - std::chrono::minutes(sample.minutesAgo)));
        record.source = sample.source;
        record.id = sample.id;
        record.type = sample.type;
        record.user = demonstrationAccount;
        record.computer = "CORVANE01";
        record.description = sample.description;
        platform::appendEvent(record);
    }
}

}  // namespace

void fillDemonstrationEvents(bool earlierDays) {
    if (earlierDays)
        write(earlier);
    write(samples);
}

void writeDemonstrationNews() {
    write(news);
}

}  // namespace host
