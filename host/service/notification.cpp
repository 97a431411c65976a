#include "host/service/notification.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <utility>

#include "platform/machine/caseFold.h"
#include "platform/machine/clock.h"

namespace service {

namespace {

enum Device : long { voiceMail = 1, pager, email, smtpAddress, snmpTrap, syslog, failover };
enum ContentType : long { voiceContent = 1, emailContent = 3 };

std::string textOf(const platform::Recordset& row, const char* field) {
    return row.isNull(field) ? std::string() : row.text(field);
}

long numberOf(const platform::Recordset& row, const char* field) {
    return row.isNull(field) ? 0 : row.number(field);
}

platform::Recordset select(const std::string& statement, platform::Connection& database) {
    platform::Recordset rows;
    rows.open(statement, database, platform::CursorType::staticCursor, platform::LockType::readOnly,
              platform::CursorLocation::client);
    return rows;
}

std::string typeName(unsigned type) {
    return type == 1 ? "Error" : type == 2 ? "Warning" : "Information";
}

// The text with its insertion variables filled in.
std::string filledIn(std::string text, const MonitoredEvent& event, const platform::EventRecord& record) {
    platform::LocalTime time{};
    const bool timed = platform::parseMoment(record.time, time);
    const std::array<std::pair<std::string_view, std::string>, 10> variables{{
        {"<Type>", typeName(record.type)},
        {"<Source>", record.source},
        {"<Category>", std::to_string(record.category)},
        {"<Event>", std::to_string(record.id)},
        {"<Date>", timed ? platform::shortDate(time) : record.time},
        {"<Time>", timed ? platform::longTime(time) : std::string()},
        {"<User>", record.user},
        {"<Computer>", record.computer},
        {"<Notes>", event.title},
        {"<Description>", record.description},
    }};
    for (std::size_t at = text.find('<'); at != std::string::npos; at = text.find('<', at))
        // What stands in the place of a variable is not looked through again.
        at += [&]() -> std::size_t {
            for (const auto& [name, value] : variables)
                if (text.compare(at, name.size(), name) == 0) {
                    text.replace(at, name.size(), value);
                    return value.size();
                }
            return 1;
        }();
    return text;
}

struct Content {
    std::string attachment, subject, body, priority;
};

Content readContent(const MonitoredEvent& event, ContentType type, platform::Connection& database) {
    constexpr std::array<const char*, 3> priorities{"Low", "Normal", "Urgent"};
    const auto row = select("SELECT * FROM Contents WHERE EventKey = " + std::to_string(event.key) +
                                " AND ContentType = " + std::to_string(type),
                            database);
    if (row.EOF_())
        return {};
    const long priority = std::clamp(numberOf(row, "ContentPriority"), 0L, 2L);
    return {textOf(row, "ContentAttachment"), textOf(row, "ContentSubject"), textOf(row, "ContentNote"),
            priorities[static_cast<std::size_t>(priority)]};
}

// Lines of a text, each further in than the line that they belong to.
std::string indented(const std::string& text) {
    std::string result = "\n        ";
    for (const char c : text)
        if (c == '\n')
            result += "\n        ";
        else if (c != '\r')
            result += c;
    return result;
}

std::string deviceText(long type, const std::string& address, const Content& voice, const Content& mail) {
    switch (type) {
        case voiceMail:
            return "voice message " + voice.attachment + " (" + voice.priority + ") to " + address;
        case pager:
            return "page to " + address + ": " + mail.subject;
        case email:
        case smtpAddress:
            return "e-mail (" + mail.priority + ") to " + address + ": " + mail.subject + indented(mail.body);
        case snmpTrap:
            return "SNMP trap: " + mail.subject;
        case syslog:
            return "syslog message to " + address + ": " + mail.subject;
        case failover:
            return "forced failover";
        default:
            return "nothing: device type " + std::to_string(type) + " is unknown";
    }
}

}  // namespace

std::vector<MonitoredEvent> readMonitoredEvents(platform::Connection& database) {
    std::vector<MonitoredEvent> events;
    for (auto row = select("SELECT * FROM Events WHERE EventActive <> 0", database); !row.EOF_();
         row.moveNext())
        events.push_back({row.number("EventKey"), textOf(row, "EventSource"), numberOf(row, "EventId"),
                          textOf(row, "EventTitle"), numberOf(row, "EventType"),
                          row.boolean("EventCollection")});
    return events;
}

bool matches(const MonitoredEvent& event, const platform::EventRecord& record,
             platform::Connection& database) {
    // The types of records are numbered as the severities are, the gravest first.
    if (record.type > event.severity || (event.id != -1 && event.id != static_cast<long>(record.id)))
        return false;
    const std::string source = platform::foldCase(record.source);
    if (!event.collection)
        return source == platform::foldCase(event.source);
    if (!source.starts_with(platform::foldCase(event.source) + "_"))
        return false;
    for (auto row = select("SELECT EventSource, EventId FROM Exclusions", database); !row.EOF_();
         row.moveNext())
        if (platform::foldCase(textOf(row, "EventSource")) == source &&
            (numberOf(row, "EventId") == -1 || numberOf(row, "EventId") == static_cast<long>(record.id)))
            return false;
    return true;
}

std::string notificationText(const MonitoredEvent& event, const platform::EventRecord& record,
                             platform::Connection& database) {
    std::string text = "Found in the " + record.log + " log: " + record.source + " " +
                       std::to_string(record.id) + ", " + typeName(record.type) +
                       "; monitored and active as event " + std::to_string(event.key) + ", \"" + event.title +
                       "\"";
    const Content voice = readContent(event, voiceContent, database);
    Content mail = readContent(event, emailContent, database);
    mail.subject = filledIn(mail.subject, event, record);
    mail.body = filledIn(mail.body, event, record);
    auto row = select(
        "SELECT Device.DeviceType, Device.DeviceAddress, Recipients.RecipientName "
        "FROM ((EventDevice INNER JOIN Device ON EventDevice.DeviceKey = Device.DeviceKey) "
        "INNER JOIN DeviceRecipient ON Device.DeviceKey = DeviceRecipient.DeviceKey) "
        "INNER JOIN Recipients ON DeviceRecipient.RecipientKey = Recipients.RecipientKey "
        "WHERE EventDevice.Active <> 0 AND Device.DeviceActive <> 0 AND Recipients.RecipientActive <> 0 "
        "AND EventDevice.EventKey = " +
            std::to_string(event.key) + " ORDER BY Device.DeviceType, Device.DeviceKey",
        database);
    if (row.EOF_())
        text += "\n    no active device to notify";
    for (; !row.EOF_(); row.moveNext())
        text += "\n    would send to " + textOf(row, "RecipientName") + ": " +
                deviceText(numberOf(row, "DeviceType"), textOf(row, "DeviceAddress"), voice, mail);
    return text;
}

}  // namespace service
