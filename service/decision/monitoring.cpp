#include "service/decision/monitoring.h"

#include <algorithm>
#include <cstdlib>
#include <ctime>

#include "platform/machine/caseFold.h"
#include "platform/machine/clock.h"

namespace service {

namespace {

using platform::Connection;
using platform::Recordset;

constexpr char testTitle[] = "$$IGNORE";

std::string textOf(const Recordset& row, const char* field) {
    return row.isNull(field) ? std::string() : row.text(field);
}

long numberOf(const Recordset& row, const char* field, long otherwise) {
    return row.isNull(field) ? otherwise : row.number(field);
}

bool flagOf(const Recordset& row, const char* field) {
    return !row.isNull(field) && row.boolean(field);
}

// Calls `use` with each row of a statement.
template <class Use>
void forEachRow(const char* statement, Connection& database, Use&& use) {
    Recordset row;
    row.open(statement, database);
    for (; !row.EOF_(); row.moveNext())
        use(row);
}

// A setting that is no number of its range counts as its usual value.
long inRange(const std::string& text, long least, long most, long otherwise) {
    char* end = nullptr;
    const long number = std::strtol(text.c_str(), &end, 10);
    return end != text.c_str() && *end == '\0' && number >= least && number <= most ? number : otherwise;
}

NotificationSettings readSettings(Connection& database) {
    constexpr long hour = 3600;
    constexpr long minutesOfYear = 525600;
    constexpr long century = 36500;
    std::unordered_map<std::string, std::string> values;
    forEachRow("SELECT Setting, Value FROM Configuration", database, [&](const Recordset& row) {
        values.try_emplace(textOf(row, "Setting"), textOf(row, "Value"));
    });
    NotificationSettings settings;
    settings.pollingInterval = std::chrono::seconds(inRange(values["PollingInterval"], 1, hour, 10));
    settings.notificationInterval =
        std::chrono::minutes(inRange(values["EventNotificationInterval"], 0, minutesOfYear, 15));
    settings.reportAging = static_cast<int>(inRange(values["ReportDataAging"], 1, century, 30));
    settings.everything = values["MaxDiag"] == "-1";
    settings.logFile = values["OutputFilePath"];
    return settings;
}

void readEvents(Connection& database, Monitoring& monitoring) {
    forEachRow("SELECT * FROM Events ORDER BY EventKey", database, [&](const Recordset& row) {
        MonitoredEvent event;
        event.key = row.number("EventKey");
        event.source = textOf(row, "EventSource");
        event.id = numberOf(row, "EventId", 0);
        event.title = textOf(row, "EventTitle");
        event.severity = numberOf(row, "EventType", 0);
        event.isActive = flagOf(row, "EventActive");
        event.isCollection = flagOf(row, "EventCollection");
        event.isTest = event.title == testTitle;
        event.lastNotification = momentOfStored(textOf(row, "EventLastNotification"));
        const std::size_t index = monitoring.events.size();
        monitoring.eventsByKey.emplace(event.key, index);
        if (event.isCollection)
            monitoring.collections.push_back(index);
        else
            monitoring.eventsBySource[platform::foldCase(event.source)].push_back(index);
        monitoring.events.push_back(std::move(event));
    });
}

void readContents(Connection& database, Monitoring& monitoring) {
    constexpr long voiceContent = 1;
    constexpr long mailContent = 3;
    forEachRow("SELECT * FROM Contents", database, [&](const Recordset& row) {
        const auto event = monitoring.eventsByKey.find(numberOf(row, "EventKey", 0));
        const long type = numberOf(row, "ContentType", 0);
        if (event == monitoring.eventsByKey.end() || (type != voiceContent && type != mailContent))
            return;
        MonitoredEvent& owner = monitoring.events[event->second];
        Content& content = type == voiceContent ? owner.voice : owner.mail;
        content.voiceFile = textOf(row, "ContentAttachment");
        content.subject = textOf(row, "ContentSubject");
        content.body = textOf(row, "ContentNote");
        content.priority = std::clamp(numberOf(row, "ContentPriority", 0), 0L, 2L);
    });
}

void readDevices(Connection& database, Monitoring& monitoring) {
    std::unordered_map<long, std::size_t> byKey;
    forEachRow(
        "SELECT Device.DeviceKey, Device.DeviceType, Device.DeviceAddress, Device.DeviceActive, "
        "Recipients.RecipientName, Recipients.RecipientActive FROM (Device INNER JOIN DeviceRecipient "
        "ON Device.DeviceKey = DeviceRecipient.DeviceKey) INNER JOIN Recipients ON "
        "DeviceRecipient.RecipientKey = Recipients.RecipientKey ORDER BY Device.DeviceType, "
        "Device.DeviceKey",
        database,
        [&](const Recordset& row) {
        Device device{row.number("DeviceKey"),      static_cast<DeviceKind>(numberOf(row, "DeviceType", 0)),
                      textOf(row, "DeviceAddress"), flagOf(row, "DeviceActive"),
                      textOf(row, "RecipientName"), flagOf(row, "RecipientActive")};
        if (byKey.emplace(device.key, monitoring.devices.size()).second)
            monitoring.devices.push_back(std::move(device));
        });
    forEachRow("SELECT EventKey, DeviceKey, Active FROM EventDevice", database, [&](const Recordset& row) {
        const auto event = monitoring.eventsByKey.find(numberOf(row, "EventKey", 0));
        const auto device = byKey.find(numberOf(row, "DeviceKey", 0));
        if (event != monitoring.eventsByKey.end() && device != byKey.end())
            monitoring.events[event->second].devices.push_back({device->second, flagOf(row, "Active")});
    });
    for (MonitoredEvent& event : monitoring.events)
        std::ranges::stable_sort(event.devices, {}, &Assignment::device);
}

// All statements see the same state of the database.
class OneView {
  public:
    explicit OneView(Connection& database) : database_(database) { run("BEGIN"); }
    ~OneView() {
        try {
            run("COMMIT");
        } catch (const platform::Failure&) {
            // Nothing was written; the next statement says what is wrong.
        }
    }
    OneView(const OneView&) = delete;
    OneView& operator=(const OneView&) = delete;

  private:
    void run(const char* statement) {
        Recordset none;
        none.open(statement, database_);
    }
    Connection& database_;
};

}  // namespace

std::optional<Moment> momentOfStored(const std::string& stored) {
    platform::LocalTime time{};
    if (stored.empty() || !platform::parseMoment(stored, time))
        return std::nullopt;
    std::tm fields{};
    fields.tm_year = time.year - 1900;
    fields.tm_mon = time.month - 1;
    fields.tm_mday = time.day;
    fields.tm_hour = time.hour;
    fields.tm_min = time.minute;
    fields.tm_sec = time.second;
    fields.tm_isdst = -1;
    return std::chrono::system_clock::from_time_t(std::mktime(&fields));
}

const MonitoredEvent* Monitoring::find(long eventKey) const {
    const auto found = eventsByKey.find(eventKey);
    return found == eventsByKey.end() ? nullptr : &events[found->second];
}

Monitoring readMonitoring(Connection& database) {
    const OneView view(database);
    Monitoring monitoring;
    monitoring.settings = readSettings(database);
    readEvents(database, monitoring);
    readContents(database, monitoring);
    readDevices(database, monitoring);
    forEachRow("SELECT EventSource, EventId FROM Exclusions", database, [&](const Recordset& row) {
        monitoring.exclusions.push_back(
            {platform::foldCase(textOf(row, "EventSource")), numberOf(row, "EventId", 0)});
    });
    return monitoring;
}

}  // namespace service
