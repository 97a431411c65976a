// What those who only ask are told, held against what the service does.

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>

#include "service/inspection/reckoning.h"
#include "service/inspection/whoIsTold.h"
#include "service/notifier.h"
#include "service/sources/hostLog.h"
#include "service/transports/waysOutSettings.h"
#include "support/temporaryHost.h"

namespace {

using namespace service;
using std::chrono::minutes;

constexpr char product[] = "SOFTWARE\\Tessaly\\ToolRack\\Diagnostic Tools\\Quillon Service\\";

// Nobody answers: every message stays in the outbox.
class Silent : public Transport {
  public:
    Outcome send(const Message&, const Deadline&) override { return {Result::tryAgain, "later"}; }
};

class Agreement : public testing::Test {
  protected:
    Agreement() {
        host.openConfiguration();
        clock.set(std::chrono::floor<std::chrono::seconds>(clock.now()));
    }
    ~Agreement() override { notifier.reset(); }

    int any(int below) { return std::uniform_int_distribution<int>(0, below - 1)(random); }
    bool mostly() { return any(6) != 0; }
    std::string flag() { return mostly() ? "-1" : "0"; }
    std::string stored(Moment moment) { return platform::storedForm(platform::localTime(moment)); }
    std::string source() {
        static const char* const sources[] = {"Disk", "disk", "Fan", "Maker_A", "Maker_B", "MAKER_a"};
        return sources[any(6)];
    }
    void run(const std::string& statements) { support::run(host.databaseFile(), statements); }

    // A few of everything, so that they meet.
    void drawDatabase() {
        std::string all =
            "DELETE FROM Events; DELETE FROM Contents; DELETE FROM Recipients; DELETE FROM Device; DELETE "
            "FROM "
            "DeviceRecipient; DELETE FROM EventDevice; DELETE FROM Exclusions; UPDATE Configuration SET "
            "Value = '" +
            std::to_string(5 * any(4)) + "' WHERE Setting = 'EventNotificationInterval';";
        for (int key = 1; key <= 3; ++key)
            all += "INSERT INTO Recipients VALUES (" + std::to_string(key) + ", 'R" + std::to_string(key) +
                   "', " + flag() + ");";
        for (int key = 1; key <= 9; ++key)
            all += "INSERT INTO Device VALUES (" + std::to_string(key) + ", " + std::to_string(1 + any(8)) +
                   ", '" + (any(2) == 0 ? "A@b" : "a@B") + std::to_string(any(4)) + "', " + flag() +
                   "); INSERT INTO DeviceRecipient VALUES (" + std::to_string(key) + ", " +
                   std::to_string(1 + any(3)) + ");";
        for (int key = 1; key <= 6; ++key) {
            const bool isCatchAll = key == 6;
            const bool wasTold = any(3) == 0;
            all += "INSERT INTO Events VALUES (" + std::to_string(key) + ", '" +
                   (isCatchAll ? "Maker" : source()) + "', " + std::to_string(any(3) - 1) + ", '" +
                   (any(8) == 0 ? "$$IGNORE" : "T" + std::to_string(key)) + "', " +
                   std::to_string(1 << any(3)) + ", " + flag() + ", " + (isCatchAll ? "-1" : "0") + ", " +
                   (wasTold ? "'" + stored(clock.now() - minutes(any(30))) + "'" : "NULL") + ");";
            for (int device = 1; device <= 9; ++device)
                if (any(2) == 0)
                    all += "INSERT INTO EventDevice VALUES (" + std::to_string(key) + ", " +
                           std::to_string(device) + ", " + flag() + ");";
        }
        if (any(2) == 0)
            all += "INSERT INTO Exclusions(EventSource, EventId) VALUES ('" + source() + "', " +
                   std::to_string(any(3) - 1) + ");";
        run(all);
        host.setRegistry(std::string(product) + "Pager", "Gateway", any(2) == 0 ? "<Number>@gateway" : "");
    }
    void startService(int round) {
        outboxFile = host.root() / "Service" / ("Outbox" + std::to_string(round) + ".db");
        NotifierOptions options;
        options.databaseFile = host.databaseFile();
        options.outboxFile = outboxFile;
        options.pause = std::chrono::hours(1);
        options.isSetUp = [](DeviceKind kind) { return problemOf(readWaysOut(), kind).empty(); };
        options.delivery.makeTransport = [](DeviceKind) { return std::make_unique<Silent>(); };
        options.delivery.mailDomain = [] { return std::string("mail.example"); };
        std::vector<std::unique_ptr<Source>> sources;
        sources.push_back(std::make_unique<HostLog>("Application"));
        notifier.reset();
        notifier = std::make_unique<Notifier>(std::move(options), std::move(sources));
        notifier->begin();
        notifier->look();
    }
    static std::string textOf(const std::vector<EventAnswer>& answers) {
        std::string text;
        for (const EventAnswer& answer : answers) {
            text += std::to_string(answer.key) + " " + std::string(service::textOf(answer.reason));
            for (const DeviceAnswer& device : answer.devices)
                text += "; " + device.address + " " + std::string(service::textOf(device.reason));
            text += "\n";
        }
        return text;
    }
    std::multiset<std::string> messages() {
        const auto rows =
            support::query(outboxFile, "SELECT EventKey, Recipient, Kind, Address FROM Message");
        return {rows.begin(), rows.end()};
    }
    std::multiset<std::string> held() {
        const auto rows = support::query(outboxFile, "SELECT EventKey, Count FROM HeldBack");
        return {rows.begin(), rows.end()};
    }

    support::TemporaryHost host;
    support::ManualClock clock;
    std::mt19937 random{20261124};
    std::filesystem::path outboxFile;
    std::unique_ptr<Notifier> notifier;
};

TEST_F(Agreement, WhoIsSaidToBeToldIsToldAndNobodyElse) {
    std::set<Reason> seen;
    for (int round = 0; round < 12; ++round) {
        drawDatabase();
        startService(round);
        WhoIsTold who(host.databaseFile(), outboxFile);
        for (int look = 0; look < 12; ++look) {
            clock.set(clock.now() + minutes(any(8)));
            notifier->look();  // what was held back is told first
            clock.set(clock.now() + std::chrono::seconds(1));
            auto expected = messages();
            auto expectedHeld = held();
            const platform::EventRecord record{"Application",
                                               stored(clock.now()),
                                               source(),
                                               static_cast<std::uint32_t>(any(2)),
                                               static_cast<std::uint16_t>(1 << any(3)),
                                               0,
                                               "",
                                               "node1",
                                               "text"};
            const std::string said = textOf(who.of(record, clock.now()));
            for (const EventAnswer& answer : who.of(record, clock.now())) {
                seen.insert(answer.reason);
                for (const DeviceAnswer& device : answer.devices) {
                    seen.insert(device.reason);
                    if (device.reason == Reason::send)
                        expected.insert(std::to_string(answer.key) + "|" + device.recipient + "|" +
                                        std::to_string(static_cast<long>(device.kind)) + "|" +
                                        device.address);
                }
                if (!answer.heldBackUntil)
                    continue;
                const std::string key = std::to_string(answer.key) + "|";
                const auto old = std::ranges::find_if(
                    expectedHeld, [&](const std::string& each) { return each.starts_with(key); });
                const int count = old == expectedHeld.end() ? 0 : std::stoi(old->substr(key.size()));
                if (old != expectedHeld.end())
                    expectedHeld.erase(old);
                expectedHeld.insert(key + std::to_string(count + 1));
            }
            platform::appendEvent(record);
            notifier->look();
            ASSERT_EQ(messages(), expected) << round << " " << look << " " << record.source;
            ASSERT_EQ(held(), expectedHeld) << round << " " << look << " " << record.source;
            clock.set(clock.now() + std::chrono::seconds(2));
            EXPECT_EQ(textOf(who.ofThen(record, *momentOfStored(record.time))), said)
                << "what was decided then is still said later";
        }
    }
    EXPECT_EQ(seen.size(), 10U) << "every reason has to occur";
}

// The reckoning of the last days: the interval over the records of an event, day by day.
TEST_F(Agreement, TheDaysAreReckonedAsTheServiceWouldHaveTold) {
    run("DELETE FROM Events; UPDATE Configuration SET Value = '15' WHERE Setting = "
        "'EventNotificationInterval';"
        "INSERT INTO Recipients VALUES (1, 'Night', -1);"
        "INSERT INTO Device VALUES (1, 4, 'a@b', -1), (2, 4, 'c@d', -1), (3, 2, '555', -1);"
        "INSERT INTO DeviceRecipient VALUES (1, 1), (2, 1), (3, 1);"
        "INSERT INTO Events VALUES (10, 'Disk', 51, '', 2, -1, 0, NULL);"
        "INSERT INTO EventDevice VALUES (10, 1, -1), (10, 2, -1), (10, 3, -1);");
    WhoIsTold who(host.databaseFile(), outboxFile);
    Reckoner reckoner(who.monitoring(), 10, [](DeviceKind kind) { return kind != DeviceKind::pager; });
    const Moment end = *momentOfStored("2026-11-24 14:00:00");
    const auto add = [&](const std::string& time, const char* source = "disk", std::uint16_t type = 1) {
        reckoner.add({"System", time, source, 51, type, 0, "", "", ""});
    };
    // Newest first, as the logs are read. 13:58 begins an interval that has not ended.
    for (const char* time : {"2026-11-24 13:59:00", "2026-11-24 13:58:00", "2026-11-23 23:59:00",
                             "2026-11-23 23:50:00", "2026-11-17 23:00:00", "2026-11-24 14:00:01"})
        add(time);
    add("2026-11-24 10:00:00", "disk", 4);
    add("2026-11-24 10:00:00", "Fan");
    const Reckoning reckoning = reckoner.reckon(end, 7);
    ASSERT_EQ(reckoning.days.size(), 7U);
    EXPECT_EQ(reckoning.days.front().date, "2026-11-18");
    EXPECT_EQ(reckoning.records, 4U) << "of other days, sources and severities none";
    // 23:50 is told; 23:59 is held back and told at five past midnight; 13:58 is told; 13:59 waits.
    EXPECT_EQ(reckoning.notifications, 6U);
    EXPECT_EQ(reckoning.days[5].records, 2U);
    EXPECT_EQ(reckoning.days[5].notifications, 2U);
    EXPECT_EQ(reckoning.days[6].records, 2U);
    EXPECT_EQ(reckoning.days[6].notifications, 4U);
    EXPECT_EQ(Reckoner(who.monitoring(), 99, [](DeviceKind) { return true; }).reckon(end, 7).records, 0U);
}

}  // namespace
