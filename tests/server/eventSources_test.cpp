#include "server/eventSources.h"

#include <gtest/gtest.h>

#include <fstream>

#include "core/state.h"
#include "platform/machine/host.h"
#include "support/temporaryHost.h"

namespace {

using mdlUtility::getEventSources;
using Names = std::vector<std::string>;

class EventSources : public testing::Test {
  protected:
    void addSource(const std::string& log, const std::string& name, const char* value = "EventMessageFile") {
        host.setRegistry("System\\CurrentControlSet\\Services\\EventLog\\" + log + "\\" + name, value,
                         "messages.dll");
    }

    support::TemporaryHost host;
};

TEST_F(EventSources, RegistryGivesSourcesWithMessageFilesApplicationFirst) {
    addSource("System", "Disk");
    addSource("Application", "QLNTest");
    addSource("Application", "Category", "CategoryMessageFile");
    addSource("Application", "Bare", "ParameterMessageFile");
    host.setRegistry("System\\CurrentControlSet\\Services\\EventLog\\Application\\Empty", "EventMessageFile",
                     "");
    addSource("Application", "xMeridaneCorvane_y");
    addSource("System", "MERIDANECORVANE_Z");

    EXPECT_EQ(getEventSources(true, false, false),
              (Names{"Category", "QLNTest", "xMeridaneCorvane_y", "Disk", "MERIDANECORVANE_Z"}));
    EXPECT_EQ(getEventSources(true, true, false), (Names{"xMeridaneCorvane_y", "MERIDANECORVANE_Z"}));
    EXPECT_EQ(getEventSources(true, true, true), (Names{"xmeridanecorvane_y", "meridanecorvane_z"}));
    EXPECT_EQ(host.countInLog("Err.Number"), 0);

    core::gCorvaneFourOrLater = true;
    EXPECT_TRUE(mdlUtility::isValidEventSource("qlnTEST"));
    EXPECT_FALSE(mdlUtility::isValidEventSource("Bare"));
}

TEST_F(EventSources, MissingKeysGiveNothingAndAKeyWithoutSourcesIsNoSource) {
    EXPECT_EQ(getEventSources(true, false, false), Names{});
    host.createRegistryKey("System\\CurrentControlSet\\Services\\EventLog\\Application");
    EXPECT_EQ(getEventSources(true, false, false), Names{});
    EXPECT_EQ(host.countInLog("Err.Number"), 0);

    std::ofstream(platform::host::registryFile()) << "damaged";
    EXPECT_EQ(getEventSources(true, false, false), Names{});
    EXPECT_EQ(host.countInLog("Err.Number = 75 "), 2);
}

TEST_F(EventSources, ElevenDuplicatesEndTheListEarly) {
    Names both;
    for (char c = 'a'; c <= 'j'; ++c) {
        both.push_back(std::string("Both_") + c);
        for (const char* log : {"Application", "System"})
            addSource(log, both.back());
    }
    addSource("System", "Later");
    Names expected = both;
    expected.push_back("Later");
    EXPECT_EQ(getEventSources(true, false, false), expected);
    EXPECT_EQ(host.countInLog("Err.Number = 457 "), 10);

    for (const char* log : {"Application", "System"})
        addSource(log, "Both_k");
    expected.back() = "Both_k";
    EXPECT_EQ(getEventSources(true, false, false), expected) << "Later comes after the eleventh duplicate";
    EXPECT_EQ(host.countInLog("forcing exit from [mdlUtility]getEventSources"), 1);
}

TEST_F(EventSources, OlderServersListTheirTableWhole) {
    EXPECT_EQ(getEventSources(false, false, false), Names{});
    EXPECT_EQ(host.countInLog("Err.Number = 3709 "), 1);

    host.openConfiguration();
    support::run(host.databaseFile(),
                 "DELETE FROM \"31Sources\";"
                 "INSERT INTO \"31Sources\" (EventSource) VALUES ('Zeta'), ('Alpha'), (NULL), "
                 "('Alpha'), ('MeridaneCorvane_X')");
    EXPECT_EQ(getEventSources(false, true, false), (Names{"Alpha", "MeridaneCorvane_X", "Zeta"}));
    EXPECT_EQ(host.countInLog("Err.Number = 457 "), 1);
    EXPECT_EQ(host.countInLog("Err.Number = 94 "), 1);
    EXPECT_EQ(getEventSources(false, false, true), (Names{"alpha", "meridanecorvane_x", "zeta"}));
    EXPECT_TRUE(mdlUtility::isValidEventSource("ZETA"));
}

}  // namespace
