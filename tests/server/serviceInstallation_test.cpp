// The first run and the later ones, with the service's real program, wrong passwords and files in every
// state.
#include "server/serviceInstallation.h"

#include <gtest/gtest.h>

#include <atomic>
#include <fstream>
#include <sstream>
#include <thread>

#include "platform/files/files.h"
#include "platform/registry/registry.h"
#include "platform/services/accounts.h"
#include "server/serviceControl.h"
#include "server/serviceFiles.h"
#include "support/childProcess.h"
#include "support/processEnd.h"
#include "support/scriptedPrompts.h"
#include "support/serviceHost.h"
#include "support/serviceWindows.h"

namespace {

namespace fs = std::filesystem;
using platform::BoxAnswer;
using platform::BoxIcon;
using platform::ServiceState;
using std::chrono::seconds;

constexpr char machine[] = "HKEY_LOCAL_MACHINE\\";
constexpr char serviceKey[] = "System\\CurrentControlSet\\Services\\HbQlnSvc";
constexpr char sources[] = "SYSTEM\\CurrentControlSet\\Services\\EventLog\\Application\\";

class Installation : public ::testing::Test {
  protected:
    template <class Value = std::string>
    Value value(const std::string& key, const char* name) const {
        const auto found = platform::registry().value(machine + key, name);
        return found ? std::get<Value>(*found) : Value();
    }
    bool keyExists(const std::string& key) const { return platform::registry().keyExists(machine + key); }
    long registrations() const { return host.countInLog("VerInfo", "installQLNService", "Output from \""); }
    void expectBox(const char* text, const char* title, BoxIcon icon, int times = 1) {
        for (int i = 0; i < times; ++i)
            prompts.expect({text, title, icon}, BoxAnswer::ok);
    }
    void expectPasswordBox(int times) {
        expectBox(
            "The QLN Service could not be started.  Typically this is because of an invalid password.  "
            "Please try again.",
            "QLN Service failed to start", BoxIcon::critical, times);
    }
    void expectUpgradeBox(const std::string& from, const std::string& to) {
        expectBox(("Upgrading the HbQlnSvc service from version: " + from + " to version: " + to).c_str(),
                  "Upgrade HbQlnSvc Service", BoxIcon::none);
    }
    std::string contentOf(const char* name) const {
        return platform::files::readFile(host.serviceFile(name));
    }

    support::ServiceHost host;
    support::FastClock clock;
    support::ScriptedPrompts prompts;
    support::ScriptedPassword password;
    support::RecordedSplash splash;
    support::CatchProcessEnd catchEnd;
};

TEST_F(Installation, TheFirstRunRegistersConfiguresAndStarts) {
    host.setBehaviour("", 100);
    password.answers = {support::servicePassword};
    EXPECT_TRUE(mdlUtility::installQLNService());
    EXPECT_TRUE(mdlUtility::isServiceRunning("hbqlnsvc"));
    EXPECT_EQ(
        password.asked,
        std::vector<std::string>{
            "The Quillon Service will now be installed and started.  The service will run under the same "
            "account as TsHubMgr (CORVANE01\\TsHubSvc).\n\nPassword for CORVANE01\\TsHubSvc:"});
    EXPECT_EQ(password.unloaded, 1);
    EXPECT_EQ(splash.shown, std::vector<std::string>{"Starting QLN Service..."});
    EXPECT_FALSE(splash.up);
    EXPECT_EQ(registrations(), 1);
    EXPECT_EQ(host.countInLog("VerInfo", "installQLNService", "HbQlnSvc registered"), 1);
    EXPECT_EQ(host.countInLog("VerInfo", "installQLNService", "Using account: CORVANE01\\TsHubSvc"), 1);
    EXPECT_EQ(value(serviceKey, "ObjectName"), support::serviceAccount);
    EXPECT_EQ(value(serviceKey, "Group"), " ");
    EXPECT_EQ(value<std::uint32_t>(serviceKey, "Start"), 2u);
    EXPECT_EQ(value<std::uint32_t>(serviceKey, "Type"), 16u);
    const std::pair<std::string, fs::path> registered[] = {
        {"MeridaneCorvane_HbQlnSvc", host.serviceFile("MeridaneCorvane_HbQlnSvc.dll")},
        {"QLNTest", host.programFolder() / "QLNTest_MC.DLL"}};
    for (const auto& [source, messageFile] : registered) {
        EXPECT_EQ(value(sources + source, "EventMessageFile"), messageFile.string());
        EXPECT_EQ(value(sources + source, "CategoryMessageFile"), messageFile.string());
        EXPECT_EQ(value<std::uint32_t>(sources + source, "TypesSupported"), 7u);
        EXPECT_EQ(value<std::uint32_t>(sources + source, "CategoryCount"), 2u);
    }
    EXPECT_EQ(contentOf("HbQlnSvcRes_ENU.dll"), "resources");
    // The missing targets are plain failures, and the copies run all the same.
    EXPECT_EQ(host.countInLog("ERROR", "copyQLNService", "Err.Number = 53 "), 2);
    EXPECT_EQ(host.countInLog("ERROR", "copyQLNService", "Err.Number = 91 "), 2);
    EXPECT_EQ(host.countInLog("ERROR:("), 4);

    EXPECT_TRUE(mdlUtility::installQLNService()) << "a later run asks nothing and leaves the service alone";
    EXPECT_EQ(host.processes(), 1);
}

TEST_F(Installation, AsksAgainForEveryWrongPasswordAndRegistersOnce) {
    expectPasswordBox(3);
    password.answers = {"one", "", "three", support::servicePassword};
    EXPECT_TRUE(mdlUtility::installQLNService());
    EXPECT_TRUE(mdlUtility::isServiceRunning("hbqlnsvc"));
    EXPECT_EQ(registrations(), 1);
    EXPECT_EQ(password.unloaded, 1);
}

TEST_F(Installation, AsksAgainForABadAccount) {
    host.setRegistry("SYSTEM\\CurrentControlSet\\Services\\TsHubMgr", "ObjectName",
                     std::string("HOST\\gone"));
    expectBox("Invalid account password.  Please try again.", "Invalid Password", BoxIcon::critical);
    password.answers = {"one", std::nullopt};
    EXPECT_FALSE(mdlUtility::installQLNService()) << "cancelled";
    EXPECT_EQ(registrations(), 1);
    EXPECT_TRUE(keyExists(serviceKey)) << "what was registered stays";
    EXPECT_TRUE(fs::exists(host.serviceFile("HbQlnSvc.exe")));
    EXPECT_TRUE(splash.shown.empty());
}

TEST_F(Installation, TakesAnEmptyPassword) {
    platform::setAccountPassword(support::serviceAccount, "");
    password.answers = {""};
    EXPECT_TRUE(mdlUtility::installQLNService());
    EXPECT_TRUE(mdlUtility::isServiceRunning("hbqlnsvc"));
}

TEST_F(Installation, OnlyAStartThatStaysPendingIsRefused) {
    host.setBehaviour("failToStart", 100);
    password.answers = {support::servicePassword};
    EXPECT_TRUE(mdlUtility::installQLNService()) << "installed, though it does not run";
    EXPECT_EQ(host.countInLog("ERROR", "installQLNService", "QLN Service failed to start.  Use Services"), 1);

    host.setBehaviour("hangInStart");
    platform::registry().deleteKey(std::string(machine) + serviceKey);
    password.answers = {support::servicePassword};
    clock.slept = seconds(0);
    EXPECT_FALSE(mdlUtility::installQLNService());
    EXPECT_EQ(clock.slept, seconds(19));
    EXPECT_EQ(host.countInLog("Warning", "installQLNService", "QLN Service took longer then 20 seconds"), 1);
}

TEST_F(Installation, GoesOnWhenTheKitIsMissing) {
    fs::remove(host.serviceFile("HbQlnSvc.ex_"));
    password.answers = {"x"};
    EXPECT_TRUE(mdlUtility::installQLNService());
    EXPECT_EQ(host.countInLog("ERROR", "ExecuteApp", "CreateProcess failed. Error: 2"), 1);
    EXPECT_EQ(
        host.countInLog("ERROR", "installQLNService", "Error in call to ChangeServiceConfig.  Error = 1060"),
        1);
    EXPECT_EQ(host.countInLog("ERROR", "installQLNService", "Error in call to StartService.  Error = 1060"),
              1);
    EXPECT_EQ(contentOf("HbQlnSvcRes_ENU.dll"), "resources") << "the next file is tried";
    EXPECT_FALSE(splash.up);
}

TEST_F(Installation, UpgradesToANewerKitAndToNothingElse) {
    host.installService();
    EXPECT_TRUE(mdlUtility::myStartService("hbqlnsvc"));
    EXPECT_TRUE(mdlUtility::installQLNService()) << "equal";
    EXPECT_TRUE(keyExists(std::string(sources) + "MeridaneCorvane_HbQlnSvc")) << "a lost source is repaired";
    host.setRegistry(std::string(sources) + "MeridaneCorvane_HbQlnSvc", "TypesSupported", 1u);
    const std::string before = contentOf("HbQlnSvc.exe");
    for (const char* kit : {"no version record", ""}) {
        std::ofstream(host.serviceFile("HbQlnSvc.ex_"), std::ios::trunc) << kit;
        EXPECT_TRUE(mdlUtility::installQLNService());
    }
    fs::remove(host.serviceFile("HbQlnSvc.ex_"));
    EXPECT_TRUE(mdlUtility::installQLNService()) << "no kit";
    EXPECT_EQ(contentOf("HbQlnSvc.exe"), before);
    EXPECT_EQ(host.countInLog("Entering [mdlUtility]myStopService"), 0);

    host.placeProgram(support::newerServiceProgram(), "HbQlnSvc.ex_");
    expectUpgradeBox("2.0.0.0", "2.1.0.2");
    EXPECT_TRUE(mdlUtility::installQLNService());
    EXPECT_EQ(contentOf("HbQlnSvc.exe"), contentOf("HbQlnSvc.ex_"));
    EXPECT_TRUE(mdlUtility::isServiceRunning("hbqlnsvc"));
    EXPECT_EQ(host.processes(), 1);
    EXPECT_EQ(host.countInLog("Info", "upgradeQLNService",
                              "Upgrading the HbQlnSvc service from version: 2.0.0.0 to version: 2.1.0.2"),
              1);
    EXPECT_EQ(value<std::uint32_t>(std::string(sources) + "MeridaneCorvane_HbQlnSvc", "TypesSupported"), 1u)
        << "an existing source is never rewritten";

    host.placeProgram(support::serviceProgram(), "HbQlnSvc.ex_");
    EXPECT_TRUE(mdlUtility::installQLNService()) << "there is no downgrade";
    EXPECT_EQ(host.countInLog("Entering [mdlUtility]copyQLNService"), 1);
}

TEST_F(Installation, APlainFileIsReplacedByAnyKitWithAVersion) {
    host.installService();
    host.placeProgram(support::serviceProgram(), "HbQlnSvc.ex_");
    fs::remove(host.serviceFile("HbQlnSvc.exe"));
    expectUpgradeBox("", "2.0.0.0");
    EXPECT_TRUE(mdlUtility::installQLNService());
    EXPECT_TRUE(mdlUtility::isServiceRunning("hbqlnsvc"));
}

TEST_F(Installation, EndsWhenTheServiceDoesNotStopForItsUpgrade) {
    host.installService();
    host.setBehaviour("hangInStop");
    EXPECT_TRUE(mdlUtility::myStartService("hbqlnsvc"));
    host.placeProgram(support::newerServiceProgram(), "HbQlnSvc.ex_");
    const std::string before = contentOf("HbQlnSvc.exe");
    expectUpgradeBox("2.0.0.0", "2.1.0.2");
    expectBox(
        "Cannot stop the HbQlnSvc service, you must manually stop the HbQlnSvc service and rerun this "
        "tool.  Exiting",
        "Failed to Upgrade HbQlnSvc Service", BoxIcon::none);
    EXPECT_THROW(mdlUtility::installQLNService(), support::ProcessEnded);
    EXPECT_EQ(contentOf("HbQlnSvc.exe"), before);
}

TEST_F(Installation, ClearsTheReadOnlyFlagOfATargetAndFlipsTheKits) {
    host.installService();
    platform::files::setReadOnly(host.serviceFile("HbQlnSvc.exe"), true);
    host.placeProgram(support::newerServiceProgram(), "HbQlnSvc.ex_");
    mdlUtility::copyQLNService();
    EXPECT_EQ(contentOf("HbQlnSvc.exe"), contentOf("HbQlnSvc.ex_"));
    EXPECT_FALSE(platform::files::isReadOnly(host.serviceFile("HbQlnSvc.exe")));
    EXPECT_TRUE(platform::files::isReadOnly(host.serviceFile("HbQlnSvc.ex_")));
    EXPECT_EQ(host.countInLog("Warning", "copyQLNService",
                              "HbQlnSvc.exe found to be read-only.  Removing the read-only flag from this "
                              "file."),
              1);
    platform::files::setReadOnly(host.serviceFile("HbQlnSvc.exe"), true);
    mdlUtility::copyQLNService();
    EXPECT_FALSE(platform::files::isReadOnly(host.serviceFile("HbQlnSvc.ex_"))) << "flipped, not set";
}

TEST_F(Installation, RetriesAHeldTargetUntilTheEleventhFailure) {
    host.installService();
    std::ofstream(host.serviceFile("HbQlnSvcRes_ENU.dll")) << "old";
    EXPECT_TRUE(mdlUtility::myStartService("hbqlnsvc"));
    const std::string target = host.serviceFile("HbQlnSvc.exe").string();
    expectBox(("Cannot copy over file: " + target +
               ".  Please make sure this file is not marked read-only.  Press Ok to try again.")
                  .c_str(),
              "File copy error", BoxIcon::critical, 10);
    mdlUtility::copyQLNService();
    EXPECT_EQ(host.countInLog("ERROR", "copyQLNService",
                              "Cannot copy over file: " + target +
                                  ".  Please make sure this file is not marked read-only."),
              10);
    EXPECT_EQ(host.countInLog("Error count exceeded, forcing exit from [mdlUtility]copyQLNService"), 1);
    EXPECT_EQ(contentOf("HbQlnSvcRes_ENU.dll"), "old") << "each try starts with the first file";
}

TEST_F(Installation, AFlagThatCannotBeClearedStartsTheCopyAgainAtOnce) {
    // Somebody else's file, read-only; without the kit's every step behind the flag would be one more
    // failure.
    const fs::path target = host.serviceFile("HbQlnSvc.exe");
    fs::create_symlink("/proc/version", target);
    fs::remove(host.serviceFile("HbQlnSvc.ex_"));
    const auto ran = support::runAsOrdinaryUser(host.root(), [&] {
        expectBox(("Cannot copy over file: " + target.string() +
                   ".  Please make sure this file is not marked read-only.  Press Ok to try again.")
                      .c_str(),
                  "File copy error", BoxIcon::critical, 10);
        mdlUtility::copyQLNService();
        EXPECT_TRUE(prompts.finished());
        EXPECT_EQ(host.countInLog("Err.Number = 53 "), 0);
    });
    if (ran == support::Ran::impossible)
        GTEST_SKIP() << "the system lets nobody become an ordinary user here";
    EXPECT_EQ(ran, support::Ran::passed);
}

// Looks for the password wherever another user of the machine could, while the service is installed.
TEST_F(Installation, ThePasswordIsSeenNowhere) {
    std::atomic<bool> done = false;
    std::atomic<int> leaks = 0;
    std::atomic<int> looks = 0;
    std::thread watcher([&] {
        while (!done) {
            for (const auto& entry : fs::directory_iterator("/proc"))
                for (const char* part : {"cmdline", "environ"}) {
                    std::ifstream file(entry.path() / part);
                    std::ostringstream text;
                    text << file.rdbuf();
                    leaks += text.str().find(support::servicePassword) != std::string::npos ? 1 : 0;
                }
            ++looks;
        }
    });
    host.setBehaviour("", 300);
    expectPasswordBox(1);
    password.answers = {std::string("wrong") + support::servicePassword, support::servicePassword};
    EXPECT_TRUE(mdlUtility::installQLNService());
    while (looks < 2)
        platform::wait(std::chrono::milliseconds(10));
    done = true;
    watcher.join();
    EXPECT_EQ(leaks, 0);
    EXPECT_EQ(host.countInLog(support::servicePassword), 0);
    // Nor in any file of the host or the installation.
    for (const auto& entry : fs::recursive_directory_iterator(host.root()))
        if (entry.is_regular_file()) {
            std::ifstream file(entry.path());
            const std::string text{std::istreambuf_iterator<char>(file), {}};
            EXPECT_EQ(text.find(support::servicePassword), std::string::npos) << entry.path();
        }
}

}  // namespace
