#include <gtest/gtest.h>
#include <unistd.h>

#include <fstream>

#include "platform/files/files.h"
#include "platform/machine/host.h"
#include "platform/services/serviceManager.h"
#include "server/legacyShortcuts.h"
#include "server/mdlCorvane.h"
#include "server/mdlCorvaneDatabase.h"
#include "server/serviceControl.h"
#include "server/serviceInstallation.h"
#include "support/temporaryHost.h"

namespace {

namespace fs = std::filesystem;

class Corvane : public testing::Test {
  protected:
    std::string versionOf(std::uint32_t version, std::uint32_t build) {
        host.setRegistry("Software\\Tessaly", "Version Number", version);
        host.setRegistry("Software\\Tessaly", "Build Number", build);
        return mdlCorvane::getVersion().text;
    }

    support::TemporaryHost host;
};

TEST_F(Corvane, VersionIsReadFromTheTwoNumbers) {
    EXPECT_EQ(mdlCorvane::getVersion().major, 0);
    EXPECT_EQ(mdlCorvane::getVersion().text, "0.0(0.0)");
    EXPECT_EQ(versionOf(0x00030001, 0x00010000), "3.1(1.0)");
    EXPECT_EQ(versionOf(0x00030001, 0x0002001F), "3.1(2.31)");
    EXPECT_EQ(versionOf(0x00040012, 0x0010000A), "4.12(10.10)");
    EXPECT_EQ(versionOf(0x000A001B, 0x00000000), "0.1(0.0)");
    EXPECT_EQ(versionOf(0x99991234, 0x0001FFFF), "9999.1234(1.-1)");
    EXPECT_EQ(host.countInLog("Err.Number"), 0);
}

TEST_F(Corvane, VersionsCompareAsTexts) {
    EXPECT_EQ(mdlCorvane::formatVersionKey({3, 1, 1, 0, ""}), "003.001.001.000");
    const auto atLeast311 = [&](std::uint32_t version, std::uint32_t build) {
        versionOf(version, build);
        return mdlCorvane::isVersionAtLeast(3, 1, 1, 0);
    };
    EXPECT_FALSE(atLeast311(0x00030001, 0x00000000));
    EXPECT_FALSE(atLeast311(0x00030000, 0x00990000));
    EXPECT_TRUE(atLeast311(0x00030001, 0x00010000));
    EXPECT_TRUE(atLeast311(0x00040000, 0x00000000));
    EXPECT_TRUE(atLeast311(0x10000000, 0x00000000));
    EXPECT_FALSE(mdlCorvane::isVersionAtLeast(200, 0, 0, 0)) << "a number of four digits sorts by its first";
}

TEST_F(Corvane, DirectoryOpensOnceAndAFailureIsOneLine) {
    platform::Connection connection;
    EXPECT_FALSE(mdlCorvaneDatabase::openCorvaneDB(connection));
    EXPECT_EQ(
        host.countInLog("Err.Number = -2147220500 Err.Description = Error connecting to CorvaneDB. Line: "),
        1);

    host.makeDirectory({"CREATE TABLE GlobalSubscriber (DtmfAccessId TEXT)"});
    EXPECT_TRUE(mdlCorvaneDatabase::openCorvaneDB(connection));
    EXPECT_FALSE(mdlCorvaneDatabase::openCorvaneDB(connection));
    EXPECT_EQ(connection.state(), platform::ObjectState::open);
    EXPECT_EQ(host.countInLog("Err.Number"), 1);
}

TEST_F(Corvane, ViewsAreRecognisedByTheMissingColumn) {
    platform::Connection connection;
    EXPECT_FALSE(mdlCorvaneDatabase::determineViewsSupport(connection));
    EXPECT_EQ(host.countInLog("Err.Number = 3709 "), 1);

    host.makeDirectory({"CREATE TABLE GlobalSubscriber (DtmfAccessId TEXT)"});
    mdlCorvaneDatabase::openCorvaneDB(connection);
    EXPECT_FALSE(mdlCorvaneDatabase::determineViewsSupport(connection));
    for (const char* change : {"ALTER TABLE GlobalSubscriber RENAME COLUMN DtmfAccessId TO Other",
                               "DROP TABLE GlobalSubscriber"}) {
        host.makeDirectory({change});
        EXPECT_TRUE(mdlCorvaneDatabase::determineViewsSupport(connection)) << change;
    }
    EXPECT_EQ(host.countInLog("Err.Number"), 1);
}

TEST_F(Corvane, ServiceRunsInStateFourOnly) {
    EXPECT_FALSE(mdlUtility::installQLNService());
    EXPECT_FALSE(mdlUtility::isServiceRunning("hbqlnsvc"));
    EXPECT_EQ(host.countInLog("ERROR:(                 [mdlUtility]isServiceRunning)   Error returned from "
                              "QueryServiceStatus, error = 1060"),
              1);

    host.setRegistry("System\\CurrentControlSet\\Services\\HbQlnSvc", "ImagePath", "HbQlnSvc.exe");
    EXPECT_TRUE(mdlUtility::installQLNService());
    EXPECT_FALSE(mdlUtility::isServiceRunning("hbqlnsvc"));
    for (const auto state : {platform::ServiceState::startPending, platform::ServiceState::running}) {
        platform::writeServiceState("HbQlnSvc", state, getpid());
        EXPECT_EQ(mdlUtility::isServiceRunning("hbqlnsvc"), state == platform::ServiceState::running);
    }
    for (const char* state : {"1", "2", "4"})
        EXPECT_EQ(host.countInLog(std::string("hbqlnsvc service state = ") + state +
                                  " (1=STOPPED, 2=START PENDING, 3=STOP PENDING, 4=SERVICE_RUNNING)"),
                  1);
}

TEST_F(Corvane, OnlyTheFirstShortcutOfTheLegacyToolGoes) {
    mdlUtility::removeKTNShortcuts();
    const fs::path menu = platform::host::menuFolder() / "Corvane";
    fs::create_directory(menu);
    const auto shortcut = [&](const char* name, const char* command) {
        std::ofstream(menu / name) << "[Desktop Entry]\nType=Application\nExec=" << command << "\n";
    };
    shortcut("a.desktop", "/opt/hubserver/other");
    shortcut("b.desktop", "\"C:\\HubServer\\KESN\\admin.exe\"");
    shortcut("c.desktop", "/opt/HubServer/Kesn/admin");
    std::ofstream(menu / "_readme") << "hubserver\\kesn";
    platform::files::setReadOnly(menu / "b.desktop", true);

    mdlUtility::removeKTNShortcuts();
    EXPECT_FALSE(fs::exists(menu / "b.desktop"));
    for (const char* kept : {"a.desktop", "c.desktop", "_readme"})
        EXPECT_TRUE(fs::exists(menu / kept)) << kept;
    EXPECT_EQ(
        host.countInLog("[mdlUtility]removeKTNShortcuts)   Found KTN Utility Shortcut: b.desktop - Deleting"),
        1);
    EXPECT_EQ(host.countInLog("Err.Number"), 0);
}

}  // namespace
