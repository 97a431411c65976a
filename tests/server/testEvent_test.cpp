#include "server/testEvent.h"

#include <gtest/gtest.h>

#include "core/state.h"
#include "database/events.h"
#include "database/settings.h"
#include "platform/machine/eventLog.h"
#include "platform/machine/host.h"
#include "support/scriptedPrompts.h"
#include "support/temporaryHost.h"

namespace {

class TestEvent : public testing::Test {
  protected:
    TestEvent() {
        host.openConfiguration();
        mdlDatabase::makeInitialDatabaseChanges();
        core::gIgnoreEventKey = mdlDatabase::getIgnoreEventKey();
        support::run(host.databaseFile(),
                     "INSERT INTO Device VALUES (1, 4, 'a@b', -1), (2, 2, '555', -1), (3, 4, 'c@d', -1);"
                     "INSERT INTO DeviceRecipient VALUES (1, 7), (2, 7), (3, 8);"
                     "INSERT INTO EventDevice VALUES (" +
                         hidden() + ", 3, -1);");
    }

    static std::string hidden() { return std::to_string(core::gIgnoreEventKey); }
    std::vector<std::string> devices() {
        return support::query(
            host.databaseFile(),
            "SELECT DeviceKey, Active FROM EventDevice WHERE EventKey = " + hidden() + " ORDER BY DeviceKey");
    }

    support::TemporaryHost host;
    support::ManualClock clock;
};

TEST_F(TestEvent, PutsTheRecipientsDevicesOnTheHiddenEventAndWritesTheEvent) {
    mdlUtility::generateTestEventLogMessage(7);
    EXPECT_EQ(devices(), (std::vector<std::string>{"1|-1", "2|-1"})) << "those of the last test are gone";
    EXPECT_EQ(
        support::query(host.databaseFile(), "SELECT EventActive FROM Events WHERE EventKey = " + hidden()),
        std::vector<std::string>{"-1"});
    EXPECT_EQ(support::query(
                  host.databaseFile(),
                  "SELECT ContentAttachment FROM Contents WHERE ContentType = 1 AND EventKey = " + hidden()),
              std::vector<std::string>{"QLN_Default_ENU.wav"});
    EXPECT_EQ(clock.slept, std::chrono::milliseconds(500));
    const auto events = platform::readEvents("Application");
    ASSERT_EQ(events.size(), 1U);
    EXPECT_EQ(events[0].source, "QLNTest");
    EXPECT_EQ(events[0].id, 10001U);
    EXPECT_EQ(events[0].type, 4U) << "informational, as the question says";
    EXPECT_FALSE(events[0].computer.empty());
    EXPECT_EQ(host.countInLog("ERROR"), 0);
}

TEST_F(TestEvent, IsWrittenForARecipientWithoutDevicesAndAFailureLeavesTheHiddenEventChanged) {
    mdlUtility::generateTestEventLogMessage(99);
    EXPECT_EQ(devices(), std::vector<std::string>{});
    EXPECT_EQ(platform::readEvents("Application").size(), 1U);

    const auto log = platform::host::eventLogsFolder() / "Application.log";
    std::filesystem::remove(log);
    std::filesystem::create_directory(log);
    mdlUtility::generateTestEventLogMessage(8);
    EXPECT_EQ(devices(), std::vector<std::string>{"3|-1"});
    EXPECT_EQ(host.countInLog("[mdlUtility]generateTestEventLogMessage"), 5)
        << "one failure, twice in and out";
}

}  // namespace
