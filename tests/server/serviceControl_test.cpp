// Moving a real service between stopped and running; the polls run on a clock of their own.
#include "server/serviceControl.h"

#include <gtest/gtest.h>

#include "platform/registry/registry.h"
#include "platform/services/accounts.h"
#include "support/serviceHost.h"
#include "support/serviceWindows.h"

namespace {

using platform::ServiceState;
using std::chrono::seconds;

class ServiceControl : public ::testing::Test {
  protected:
    ServiceControl() { host.installService(); }
    long states(const char* state) const {
        return host.countInLog(std::string("service state = ") + state +
                               " (1=STOPPED, 2=START PENDING, 3=STOP PENDING, 4=SERVICE_RUNNING)");
    }
    bool isRegistered() const {
        return platform::registry().keyExists(
            "HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Services\\HbQlnSvc");
    }

    support::ServiceHost host;
    support::FastClock clock;
    support::RecordedSplash splash;
};

TEST_F(ServiceControl, StartsAndStopsWithoutNeedlessRequests) {
    host.setBehaviour("", 100);
    EXPECT_TRUE(mdlUtility::myStopService("hbqlnsvc")) << "it is stopped";
    EXPECT_TRUE(mdlUtility::myStartService("hbqlnsvc"));
    EXPECT_GE(clock.slept, seconds(1));
    EXPECT_TRUE(mdlUtility::isServiceRunning("hbqlnsvc"));
    EXPECT_TRUE(mdlUtility::myStartService("hbqlnsvc")) << "it runs";
    EXPECT_EQ(host.processes(), 1);
    EXPECT_TRUE(mdlUtility::myStopService("hbqlnsvc"));
    EXPECT_FALSE(mdlUtility::isServiceRunning("hbqlnsvc"));
    EXPECT_GE(states("2"), 1);
    EXPECT_EQ(host.countInLog("ERROR:("), 0);
    EXPECT_EQ(host.countInLog("Warning:("), 0);
}

TEST_F(ServiceControl, GivesUpAStartAfterTwentyPolls) {
    host.setBehaviour("hangInStart");
    EXPECT_FALSE(mdlUtility::myStartService("hbqlnsvc"));
    EXPECT_EQ(clock.slept, seconds(19));
    EXPECT_EQ(states("2"), 20);
    EXPECT_FALSE(mdlUtility::isServiceRunning("hbqlnsvc")) << "pending is not running";
    EXPECT_EQ(host.countInLog("Warning", "myStartService",
                              "QLN Service took "
                              "longer then 20 seconds to start, if it started at all."),
              1);
}

TEST_F(ServiceControl, GivesUpAStopAfterTwentyPolls) {
    host.setBehaviour("hangInStop");
    EXPECT_TRUE(mdlUtility::myStartService("hbqlnsvc"));
    clock.slept = seconds(0);
    EXPECT_FALSE(mdlUtility::myStopService("hbqlnsvc"));
    EXPECT_EQ(clock.slept, seconds(19));
    EXPECT_EQ(host.countInLog("Warning", "myStopService",
                              "hbqlnsvc Service "
                              "has not stopped in 20 seconds.  "),
              1);
    EXPECT_FALSE(mdlUtility::myStopService("hbqlnsvc"));
    EXPECT_EQ(host.countInLog("Error returned from ControlService, error = 1061"), 1);
}

TEST_F(ServiceControl, LogsWhyAServiceDoesNotStart) {
    host.setBehaviour("failToStart", 100);
    EXPECT_FALSE(mdlUtility::myStartService("hbqlnsvc"));
    EXPECT_EQ(host.countInLog("ERROR", "myStartService",
                              "QLN Service failed to "
                              "start.  Use Services for further troubleshooting."),
              1);
    platform::setAccountPassword(support::serviceAccount, "changed");
    EXPECT_FALSE(mdlUtility::myStartService("hbqlnsvc"));
    EXPECT_EQ(host.countInLog("Error in call to StartService.  Error = 1069"), 1);
    EXPECT_FALSE(mdlUtility::myStartService("none"));
    EXPECT_FALSE(mdlUtility::myStopService("none"));
    EXPECT_FALSE(mdlUtility::isServiceRunning("none"));
    EXPECT_EQ(host.countInLog("Error returned from QueryServiceStatus, error = 1060"), 4)
        << "a failed query at a start leads to its poll, which fails too";
}

TEST_F(ServiceControl, RemovesARunningServiceButNotItsFiles) {
    host.setRegistry("SYSTEM\\CurrentControlSet\\Services\\EventLog\\Application\\QLNTest", "CategoryCount",
                     2u);
    EXPECT_TRUE(mdlUtility::myStartService("hbqlnsvc"));
    mdlUtility::uninstallQLNService();
    EXPECT_FALSE(isRegistered());
    EXPECT_EQ(host.processes(), 0);
    EXPECT_TRUE(std::filesystem::exists(host.serviceFile("HbQlnSvc.exe")));
    EXPECT_TRUE(platform::registry().keyExists(
        "HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Services\\EventLog\\Application\\QLNTest"));
    EXPECT_EQ(splash.shown, (std::vector<std::string>{"Removing HbQlnSvc Service...",
                                                      "HbQlnSvc Service removed.  Exiting (3)"}));
    EXPECT_EQ(host.countInLog("Warning", "uninstallQLNService", "HbQlnSvc has been removed."), 1);
    EXPECT_EQ(host.countInLog("[mdlUtility]uninstallQLNService)   HbQlnSvc service state = 4 (1=STOPPED"), 1);

    mdlUtility::uninstallQLNService();
    EXPECT_EQ(host.countInLog("Error returned from QueryServiceStatus, error = 1060"), 1);
    EXPECT_EQ(splash.shown.size(), 4u);
}

TEST_F(ServiceControl, DeletesAServiceThatWillNotStop) {
    host.setBehaviour("hangInStop");
    EXPECT_TRUE(mdlUtility::myStartService("hbqlnsvc"));
    mdlUtility::uninstallQLNService();
    EXPECT_TRUE(isRegistered()) << "it waits for its process";
    EXPECT_EQ(
        host.countInLog("QLN Service took longer then 20 seconds to stop.  Deleting the service may not "
                        "happen until the service stops and the Service control manager is closed."),
        1);
    EXPECT_EQ(host.countInLog("HbQlnSvc has been removed."), 1);
    mdlUtility::uninstallQLNService();
    EXPECT_EQ(host.countInLog("Error returned from ControlService, error = 1061"), 1);
    EXPECT_EQ(host.countInLog("Error returned from DeleteService, error = 1072"), 1);
}

}  // namespace
