#include "service/decision/decide.h"

#include <gtest/gtest.h>

#include <random>

#include "service/decision/render.h"
#include "support/temporaryHost.h"

namespace {

using namespace service;

platform::EventRecord record(const std::string& source, std::uint32_t id, std::uint16_t type = 1) {
    return {"System", "2026-11-24 14:05:09", source, id, type, 3, "root", "node1", "one\r\n<Type>"};
}

class Decision : public testing::Test {
  protected:
    Decision() {
        host.openConfiguration();
        support::run(
            host.databaseFile(),
            "DELETE FROM Events; DELETE FROM Contents;"
            "INSERT INTO Recipients VALUES (1, 'Night', -1), (2, 'Away', 0);"
            "INSERT INTO Device VALUES (1, 4, 'a@b', -1), (2, 4, 'A@B', -1), (3, 6, 'loghost', 0), (4, 4, "
            "'c@d', "
            "-1), (5, 5, 'SNMP TRAP', -1), (6, 2, '555', -1), (7, 4, 'nobody@x', -1);"
            "INSERT INTO DeviceRecipient VALUES (1, 1), (2, 1), (3, 1), (4, 2), (5, 1), (6, 1);"
            "INSERT INTO Events VALUES (10, 'Disk', 51, 'Watch it', 2, -1, 0, NULL), (11, 'DISK', -1, '', 4, "
            "-1, 0, "
            "NULL), (12, 'Disk', 51, '', 4, 0, 0, NULL), (13, 'Maker', -1, '', 1, -1, -1, NULL);"
            "INSERT INTO Contents VALUES (10, 1, 'call.wav', 2, 'x', 'y'), (10, 3, NULL, 0, '<Type> "
            "<Source>[<Event>] "
            "<Notes> <Description>', 'On <Date> <Unknown>: <Description>');"
            "INSERT INTO EventDevice VALUES (10, 6, 0), (10, 1, -1), (10, 2, -1), (10, 3, -1), (10, 4, -1), "
            "(10, 5, "
            "-1), (10, 7, -1), (10, 99, -1), (11, 1, -1), (11, 6, -1);"
            "INSERT INTO Exclusions(EventSource, EventId) VALUES ('MAKER_Tape', -1), ('Maker_\xC3\xA4', 7);");
    }
    std::string explain(const platform::EventRecord& found) {
        platform::Connection database;
        database.open("Provider=Microsoft.Jet.OLEDB.4.0;Mode=Read;Data Source=" +
                      host.databaseFile().string());
        monitoring = readMonitoring(database);
        std::string text;
        for (const EventVerdict& verdict : decide(found, monitoring, circumstances)) {
            text += std::to_string(verdict.event->key) + (verdict.reason == Reason::send ? ":" : "-") +
                    (verdict.reason == Reason::send ? "" : std::to_string(static_cast<int>(verdict.reason)));
            for (const DeviceVerdict& each : verdict.devices)
                text += " " + std::to_string(each.device->key) + "=" +
                        std::to_string(static_cast<int>(each.reason));
            text += "; ";
        }
        return text;
    }
    void run(const std::string& statements) { support::run(host.databaseFile(), statements); }

    support::TemporaryHost host;
    support::ManualClock clock;
    Monitoring monitoring;
    Circumstances circumstances{clock.now(), [](DeviceKind kind) { return kind != DeviceKind::snmpTrap; },
                                [](long) { return std::optional<Moment>(); }};
};

// The numbers are those of the reasons: 0 send, 1 inactive, 2 excluded, 3 severity, 4 off, 5 cut off, 6
// recipient, 7 not set up, 8 interval, 9 same address.
TEST_F(Decision, EachEventAndDeviceHasItsReason) {
    EXPECT_EQ(explain(record("disk", 51)), "10: 6=4 1=0 2=9 4=6 5=7 3=5; 11: 6=0 1=9; 12-1; ");
    EXPECT_EQ(explain(record("disk", 51, 4)), "10-3; 11: 6=0 1=0; 12-1; ");
    EXPECT_EQ(explain(record("disk", 52)), "11: 6=0 1=0; ");
    EXPECT_EQ(explain(record("Tape", 51)), "");
    EXPECT_EQ(explain(record("maker_new", 1)), "13:; ");
    EXPECT_EQ(explain(record("maker_new", 1, 2)), "13-3; ");
    EXPECT_EQ(explain(record("maker", 1)), "") << "the prefix alone is no product";
    EXPECT_EQ(explain(record("maker_tape", 1)), "13-2; ");
    EXPECT_EQ(explain(record("maker_\xC3\x84", 7)), "13-2; ") << "case beyond ASCII is ignored too";
    EXPECT_EQ(explain(record("maker_\xC3\x84", 8)), "13:; ");
    run("INSERT INTO Events VALUES (14, 'Maker_Own', 1, '', 1, -1, 0, NULL);"
        "INSERT INTO EventDevice VALUES (13, 1, -1), (14, 1, -1)");
    EXPECT_EQ(explain(record("maker_own", 1)), "14: 1=0; 13: 1=9; ") << "the event's own words go out";
    for (int reason = 0; reason <= static_cast<int>(Reason::sameAddress); ++reason)
        EXPECT_FALSE(textOf(static_cast<Reason>(reason)).empty());
}

TEST_F(Decision, AnEventThatWasToldIsHeldBackForAWhile) {
    const auto stored = [&](std::chrono::minutes ago) {
        return platform::storedForm(platform::localTime(clock.now() - ago));
    };
    using std::chrono::minutes;
    run("UPDATE Configuration SET Value = '15' WHERE Setting = 'EventNotificationInterval'");
    const std::string held = "11: 6=8 1=8; ";
    const std::string told = "11: 6=0 1=0; ";
    for (const auto& [ago, expected] : {std::pair{14, held}, {16, told}, {-60, told}}) {
        run("UPDATE Events SET EventLastNotification = '" + stored(minutes(ago)) + "' WHERE EventKey = 11");
        EXPECT_EQ(explain(record("disk", 52)), expected) << ago;
    }
    circumstances.pendingSince = [&](long) { return std::optional(clock.now() - minutes(1)); };
    EXPECT_EQ(explain(record("disk", 52)), held) << "what is on its way counts too";
    run("INSERT INTO Events VALUES (15, 'Disk', 52, '', 4, -1, 0, NULL); INSERT INTO EventDevice VALUES (15, "
        "1, -1)");
    circumstances.pendingSince = [&](long key) {
        return key == 11 ? std::optional(clock.now() - minutes(1)) : std::nullopt;
    };
    EXPECT_EQ(explain(record("disk", 52)), "11: 6=8 1=8; 15: 1=9; ")
        << "what is held back will be told there";
    run("DELETE FROM Events WHERE EventKey = 15");
    run("UPDATE Events SET EventTitle = '$$IGNORE' WHERE EventKey = 11");
    EXPECT_EQ(explain(record("disk", 52)), told) << "the test is never held back";
    run("UPDATE Events SET EventTitle = '' WHERE EventKey = 11; UPDATE Configuration SET Value = 'often' "
        "WHERE Setting "
        "= 'EventNotificationInterval'");
    EXPECT_EQ(explain(record("disk", 52)), held) << "a setting that is no number counts as its usual value";
}

TEST_F(Decision, WordsAreThoseOfTheContent) {
    explain(record("Disk", 51));
    const MonitoredEvent& event = *monitoring.find(10);
    const Rendered mail = render(event, record("Disk", 51), DeviceKind::smtpAddress, "2 more.");
    EXPECT_EQ(mail.subject, "Error Disk[51] Watch it one <Type>")
        << "a subject is one line, and no variable is "
           "looked for in what a record says";
    EXPECT_EQ(mail.body, "On 11/24/2026 <Unknown>: one\r\n<Type>\r\n2 more.");
    EXPECT_EQ(mail.priority, 0);
    EXPECT_EQ(mail.voiceFile, "");
    const Rendered voice = render(event, record("Disk", 51), DeviceKind::voiceMail);
    EXPECT_EQ(voice.voiceFile, "call.wav");
    EXPECT_EQ(voice.priority, 2);
    EXPECT_EQ(voice.subject, mail.subject);
    EXPECT_EQ(render(*monitoring.find(11), record("Disk", 51), DeviceKind::pager).body, "");
}

}  // namespace
