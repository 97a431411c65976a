// The service's real program: which records of the event logs it finds, and whom it would notify of them.
#include <gtest/gtest.h>

#include "platform/files/files.h"
#include "platform/machine/eventLog.h"
#include "support/serviceHost.h"

namespace {

using Lines = std::vector<std::string>;
using platform::ServiceState;

class WatchingService : public ::testing::Test {
  protected:
    WatchingService() {
        host.installService();
        host.setRegistry("SOFTWARE\\Tessaly\\ToolRack\\Diagnostic Tools\\Quillon Service",
                         "ServicePollingPause", 5u);
        host.openConfiguration();
        set("OutputFilePath", logFile().string());
        run("INSERT INTO Recipients VALUES (1, 'Night shift', -1), (2, 'On leave', 0);"
            "INSERT INTO Device VALUES (1, 1, 'DIR-7', -1), (2, 4, 'night@example.org', -1), (3, 6, "
            "'loghost', 0),"
            "(4, 4, 'away@example.org', -1), (5, 5, 'SNMP TRAP', -1), (6, 7, 'Failover', -1), (7, 2, '555', "
            "-1);"
            "INSERT INTO DeviceRecipient VALUES (1, 1), (2, 1), (3, 1), (4, 2), (5, 1), (6, 1), (7, 1);");
    }

    std::filesystem::path logFile() const { return host.root() / "Service" / "watch.log"; }
    void run(const std::string& statements) { support::run(host.databaseFile(), statements); }
    void set(const std::string& setting, const std::string& value) {
        run("UPDATE Configuration SET Value = '" + value + "' WHERE Setting = '" + setting + "'");
    }
    // A monitored event with a content of its own and all devices.
    void monitor(int key, const std::string& source, int id, int severity, bool active = true) {
        const std::string number = std::to_string(key);
        run("INSERT INTO Events VALUES (" + number + ", '" + source + "', " + std::to_string(id) +
            ", 'Title " + number + "', " + std::to_string(severity) + ", " + (active ? "-1" : "0") +
            ", 0, NULL);" + "INSERT INTO Contents VALUES (" + number + ", 1, 'call.wav', 2, NULL, NULL), (" +
            number +
            ", 3, NULL, 0, '<Type> <Source>[<Event>] <Notes>', 'On <Date> at <Time>' || char(13, 10) || "
            "'<Description>');");
    }
    void assignAll(int key) {
        run("INSERT INTO EventDevice SELECT " + std::to_string(key) + ", DeviceKey, -1 FROM Device");
    }
    void write(const char* log, const std::string& source, unsigned id, unsigned short type,
               const std::string& description = {}) {
        platform::EventRecord record;
        record.log = log;
        record.time = "2026-11-24 14:05:09";
        record.source = source;
        record.id = id;
        record.type = type;
        record.description = description;
        platform::appendEvent(record);
    }
    platform::Service service() {
        return {platform::ServiceManager(platform::managerExecute), "HbQlnSvc",
                platform::serviceStart | platform::serviceStop};
    }
    void start() {
        EXPECT_EQ(service().start(), 0u);
        EXPECT_TRUE(host.reaches(ServiceState::running));
    }
    // The lines of the log without their moments, once the service has stopped.
    Lines stop() {
        // A look that began before the last record was written does not see it, the one after it does.
        platform::wait(std::chrono::milliseconds(100));
        EXPECT_EQ(service().control(platform::ServiceControl::stop), 0u);
        EXPECT_TRUE(host.reaches(ServiceState::stopped));
        Lines lines;
        const std::string text = platform::files::readFile(logFile());
        for (std::size_t at = 0; at < text.size(); at = text.find('\n', at) + 1) {
            EXPECT_EQ(text.substr(at + 19, 2), "  ");
            lines.push_back(text.substr(at + 21, text.find('\n', at) - at - 21));
        }
        return lines;
    }

    support::ServiceHost host;
};

TEST_F(WatchingService, TellsWhomItWouldNotifyAndWithWhat) {
    write("Application", "Disk", 51, 1, "from before the start");
    monitor(10, "disk", 51, 2);
    assignAll(10);
    start();
    write("System", "Disk", 51, 2, "1. line\r\n2. line with <Type>");
    EXPECT_EQ(
        stop(),
        (Lines{"HbQlnSvc started",
               "Found in the System log: Disk 51, Warning; monitored and active as event 10, \"Title 10\"",
               "    would send to Night shift: voice message call.wav (Urgent) to DIR-7",
               "    would send to Night shift: page to 555: Warning Disk[51] Title 10",
               "    would send to Night shift: e-mail (Low) to night@example.org: Warning Disk[51] Title 10",
               "        On 11/24/2026 at 2:05:09 PM", "        1. line", "        2. line with <Type>",
               "    would send to Night shift: SNMP trap: Warning Disk[51] Title 10",
               "    would send to Night shift: forced failover", "HbQlnSvc stopped"}))
        << "neither the inactive device nor the inactive recipient, and nothing of before the start";
}

TEST_F(WatchingService, FindsWhatTheEventsStandFor) {
    monitor(10, "Disk", -1, 1);
    monitor(11, "Disk", 51, 4);
    monitor(12, "Disk", 52, 4, false);
    run("UPDATE Events SET EventActive = -1 WHERE EventCollection <> 0;"
        "INSERT INTO Exclusions(EventSource, EventId) VALUES ('MeridaneCorvane_License', -1), "
        "('MeridaneCorvane_Doh', 7)");
    const std::string catchAll =
        support::query(host.databaseFile(), "SELECT EventKey FROM Events WHERE EventCollection <> 0").at(0);
    start();
    write("Application", "Disk", 51, 4);
    write("Application", "Disk", 52, 1);
    write("Application", "Tape", 51, 1);
    for (const unsigned id : {7u, 8u})
        for (const char* source : {"MeridaneCorvane_License", "MERIDANECORVANE_DOH", "Meridane"})
            write("Application", source, id, 1);
    write("Application", "MeridaneCorvane_Doh", 8, 2);
    Lines found;
    for (const std::string& line : stop())
        if (line.starts_with("Found"))
            found.push_back(line.substr(line.find(": ") + 2, line.find(", \"") - line.find(": ") - 2));
    EXPECT_EQ(found, (Lines{"Disk 51, Information; monitored and active as event 11",
                            "Disk 52, Error; monitored and active as event 10",
                            "MERIDANECORVANE_DOH 8, Error; monitored and active as event " + catchAll}));
}

TEST_F(WatchingService, WaitsForADatabaseThatIsNotThereAndKeepsWhatItHasNotReadYet) {
    monitor(10, "Disk", 51, 4);
    set("MaxDiag", "-1");
    std::filesystem::rename(host.databaseFile(), host.root() / "away");
    start();
    write("Application", "Disk", 51, 4);
    platform::wait(std::chrono::milliseconds(50));
    std::filesystem::rename(host.root() / "away", host.databaseFile());
    const Lines lines = stop();
    ASSERT_GE(lines.size(), 5u);
    EXPECT_EQ(lines[0], "HbQlnSvc started");
    EXPECT_EQ(lines[1], "Looking for 1 active events; new in the event logs: 1");
    EXPECT_TRUE(lines[2].starts_with("Found in the Application log: Disk 51, Information"));
    EXPECT_EQ(lines[3], "    no active device to notify");
    EXPECT_EQ(lines[4], "Looking for 1 active events; new in the event logs: 0");
}

}  // namespace
