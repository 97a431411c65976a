// The event logs of a host: what they hold, a record more, and who would be told of one.

#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>

#include "host/commands.h"
#include "platform/machine/clock.h"
#include "platform/machine/eventLog.h"
#include "service/inspection/whoIsTold.h"

namespace qlnhost {

namespace {

const char* typeText(unsigned type) {
    return type == 1 ? "Error" : type == 2 ? "Warning" : "Information";
}

std::uint16_t typeOf(const std::string& text) {
    if (text == "error")
        return 1;
    if (text == "warning")
        return 2;
    if (text == "information")
        return 4;
    throw UsageError("TYPE is error, warning or information, not '" + text + "'");
}

void requireLog(const std::string& log) {
    if (log != "Application" && log != "System")
        throw UsageError("the logs are Application and System, not '" + log + "'");
}

// "LOG SOURCE ID TYPE" of a command.
platform::EventRecord takeRecord(Arguments& arguments) {
    constexpr unsigned long mostOfId = 0xFFFFFFFF;
    platform::EventRecord record;
    record.log = arguments.take("LOG");
    requireLog(record.log);
    record.source = arguments.take("SOURCE");
    record.id = static_cast<std::uint32_t>(parseNumber(arguments.take("ID"), mostOfId, "ID"));
    record.type = typeOf(arguments.take("TYPE"));
    return record;
}

int addEvent(Arguments& arguments) {
    constexpr unsigned long mostOfCategory = 0xFFFF;
    const auto category = parseNumber(arguments.option("--category", "0"), mostOfCategory, "--category");
    const std::string user = arguments.option("--user", "");
    platform::EventRecord record = takeRecord(arguments);
    record.category = static_cast<std::uint16_t>(category);
    record.user = user;
    record.description = arguments.take("TEXT");
    arguments.finish();
    platform::appendEvent(record);
    return 0;
}

int listEvents(const std::string& chosen) {
    for (const char* log : {"Application", "System"}) {
        if (!chosen.empty() && chosen != log)
            continue;
        for (const platform::EventRecord& event : platform::readEvents(log)) {
            std::string text = event.description;
            for (char& c : text)
                c = c == '\r' || c == '\n' || c == '\t' ? ' ' : c;
            std::printf("%-11s %s %-11s %-32s %6u  %s\n", log, event.time.c_str(), typeText(event.type),
                        event.source.c_str(), event.id, text.c_str());
        }
    }
    return 0;
}

void print(const service::EventAnswer& answer) {
    std::printf("Event %ld, \"%s\": %s\n", answer.key, answer.title.c_str(),
                std::string(service::textOf(answer.reason)).c_str());
    for (const service::DeviceAnswer& each : answer.devices)
        std::printf("  %s, %s: %s%s\n", each.recipient.c_str(), each.address.c_str(),
                    std::string(service::textOf(each.reason)).c_str(),
                    each.problem.empty() ? "" : (": " + each.problem).c_str());
}

}  // namespace

int eventsCommand(Arguments& arguments) {
    const std::string chosen = arguments.takeOr("");
    if (chosen == "add")
        return addEvent(arguments);
    arguments.finish();
    if (!chosen.empty())
        requireLog(chosen);
    return listEvents(chosen);
}

// The service's own decision, as if the record came now; nothing is sent or written.
int explainCommand(Arguments& arguments) {
    const platform::EventRecord record = takeRecord(arguments);
    arguments.finish();
    const auto answers = service::WhoIsTold(databaseFile(), outboxFile()).of(record, platform::clock().now());
    if (answers.empty())
        std::puts("No monitored event has this source and id.");
    for (const service::EventAnswer& answer : answers)
        print(answer);
    return 0;
}

}  // namespace qlnhost
