// What the service has told and has still to tell, where it tells it, and the host's own mailboxes.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

#include "host/commands.h"
#include "platform/ado/ado.h"
#include "platform/machine/clock.h"
#include "service/outbox/inspection.h"
#include "service/transports/mailReader.h"
#include "service/transports/waysOut.h"

namespace qlnhost {

namespace {

// Control characters of what came from outside must not reach the terminal.
std::string printable(std::string text) {
    for (char& c : text)
        c = static_cast<unsigned char>(c) < ' ' || c == 127 ? ' ' : c;
    return text;
}

std::string textOf(const platform::Recordset& row, const char* field) {
    return printable(platform::valueText(row.value(field)));
}

std::string textOf(service::Moment moment) {
    return platform::storedForm(platform::localTime(moment));
}

void printHistory(unsigned long most) {
    platform::Connection database;
    database.open("Provider=Microsoft.Jet.OLEDB.4.0;Mode=Read;Data Source=" + databaseFile().string());
    platform::Recordset rows;
    rows.open("SELECT * FROM (SELECT * FROM NotificationLog ORDER BY LogKey DESC LIMIT " +
                  std::to_string(most) + ") ORDER BY LogKey",
              database);
    for (; !rows.EOF_(); rows.moveNext())
        std::printf("%s  %s %s  %s: %s\n", textOf(rows, "LogTime").c_str(),
                    textOf(rows, "EventSource").c_str(), textOf(rows, "EventID").c_str(),
                    textOf(rows, "DeviceAddress").c_str(), textOf(rows, "Success").c_str());
}

void printWaiting(const service::OutboxView& outbox) {
    for (const service::Outgoing& each : outbox.waiting)
        std::printf("%s  %s %u  %s, %s: waits, attempts so far %d, next %s%s\n", textOf(each.created).c_str(),
                    printable(each.eventSource).c_str(), each.eventId, printable(each.recipient).c_str(),
                    printable(each.address).c_str(), each.attempts, textOf(each.nextAttempt).c_str(),
                    each.answer.empty() ? "" : (": " + printable(each.answer)).c_str());
    for (const service::HeldBack& each : outbox.heldBack)
        std::printf("%s  %s %u  event %ld: %lld held back since %s\n", each.last.c_str(),
                    printable(each.record.source).c_str(), each.record.id, each.eventKey,
                    static_cast<long long>(each.count), each.first.c_str());
}

void print(const service::MailView& mail) {
    std::printf("%s%s  %s\n     %s\n", mail.isUnread ? "New  " : "     ", mail.date.c_str(),
                printable(mail.subject).c_str(), mail.file.c_str());
    for (std::size_t at = 0; at < mail.body.size();) {
        const std::size_t end = std::min(mail.body.find('\n', at), mail.body.size());
        std::printf("        %s\n", printable(mail.body.substr(at, end - at)).c_str());
        at = end + 1;
    }
    for (const std::string& name : mail.attachments)
        std::printf("        [%s]\n", printable(name).c_str());
}

}  // namespace

int notificationsCommand(Arguments& arguments) {
    constexpr unsigned long mostRows = 1'000'000;
    const unsigned long most = parseNumber(arguments.option("--last", "50"), mostRows, "--last");
    arguments.finish();
    printHistory(most);
    if (const auto outbox = service::viewOutbox(outboxFile()))
        printWaiting(*outbox);
    return 0;
}

int mailCommand(Arguments& arguments) {
    const std::string address = arguments.takeOr("");
    arguments.finish();
    const std::filesystem::path folder = service::readWaysOut().mailFolder;
    const auto boxes = service::mailboxesIn(folder);
    if (address.empty()) {
        for (const service::MailboxView& each : boxes)
            std::printf("%-40s %zu new, %zu read\n", each.address.c_str(), each.unread, each.read);
        return 0;
    }
    if (std::ranges::none_of(boxes, [&](const auto& each) { return each.address == address; })) {
        std::fprintf(stderr, "qlnhost: no mailbox of %s\n", address.c_str());
        return 1;
    }
    for (const service::MailView& mail : service::mailsOf(folder, address))
        print(mail);
    return 0;
}

int transportsCommand(Arguments& arguments) {
    using service::DeviceKind;
    constexpr std::chrono::seconds patience(10);
    constexpr std::pair<DeviceKind, const char*> kinds[] = {
        {DeviceKind::voiceMail, "voice mail"}, {DeviceKind::pager, "pager"},
        {DeviceKind::email, "e-mail"},         {DeviceKind::smtpAddress, "SMTP address"},
        {DeviceKind::snmpTrap, "SNMP trap"},   {DeviceKind::syslog, "syslog"},
        {DeviceKind::failover, "failover"}};
    arguments.finish();
    const service::WaysOutSettings ways = service::readWaysOut();
    for (const auto& [kind, name] : kinds) {
        const std::string problem = service::problemOf(ways, kind);
        std::printf(
            "%-13s %s\n", name,
            problem.empty() ? service::describe(ways, kind).c_str() : ("not set up: " + problem).c_str());
    }
    if (ways.mail.relay.empty() || !ways.mailProblem.empty())
        return 0;
    const service::Outcome answer =
        service::Smtp(ways.mail).probe({std::chrono::steady_clock::now() + patience});
    const bool answers = answer.result == service::Result::delivered;
    std::printf("The relay %s: %s\n", answers ? "answers" : "cannot be used",
                printable(answer.answer).c_str());
    return answers ? 0 : 1;
}

}  // namespace qlnhost
